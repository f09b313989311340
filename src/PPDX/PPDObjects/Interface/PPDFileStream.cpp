// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDFileStream.h"

#include "PPDFile.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "PPDX/Utilities/ModelState.h"
#include "platform/FreshMemory.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace torka {

PPDFileStream::PPDFileStream(PPDFile* source, bool inPieces, long pieceCapacity)
    : capacity(std::clamp(pieceCapacity, 1L, kPieceCapacity))
    , chunked(inPieces)
    , file(source) {
    if (file == nullptr || !chunked || !Setup()) {
        status = kStreamBad;
    }
}

PPDFileStream::~PPDFileStream() = default;

bool PPDFileStream::Setup() {
    PPDStream::Setup(nullptr, 0);
    if (hasReadFault) {
        return false; // what a further read gave would join text across a gap
    }
    if (!file->dataForkOpen() && !file->openDataFork(fsRdPerm)) {
        return false;
    }
    if (!buffer) {
        capacity = static_cast<long>(
            std::min<std::uint64_t>(file->dataForkSize(), static_cast<std::uint64_t>(capacity)));
        buffer.reset(capacity > 0 ? new (std::nothrow) char[static_cast<std::size_t>(capacity)] : nullptr);
        gMemoryShortages += capacity > 0 && !buffer ? 1U : 0U;
        if (buffer) {
            platform::takePages(buffer.get(), static_cast<std::size_t>(capacity));
        }
    }
    long count = buffer ? capacity : 0;
    const OSStatus result = buffer ? file->dataForkRead(buffer.get(), count) : eofErr;
    hasReadFault = result != noErr && result != eofErr;
    if (hasReadFault) {
        return false;
    }
    PPDStream::Setup(buffer.get(), count);
    // Most files hold none of these bytes. The lines then need no search for them.
    const auto holds = [bytes = Remaining()](int byte) {
        return !bytes.empty() && std::memchr(bytes.data(), byte, bytes.size()) != nullptr;
    };
    mayHoldReturns = holds('\r');
    mayHoldEndBytes = holds(0xFF);
    mayHoldNuls = holds('\0');
    if (count == 0) {
        status = kStreamEndOfFile;
    }
    return Good();
}

bool PPDFileStream::TakeLine(std::string_view& line) {
    if (hasHandedBack) {
        hasHandedBack = false;
        line = lastLine;
        status = statusAfterHandedBack;
        return resultOfLast;
    }
    lineMayHoldNul = mayHoldNuls;
    resultOfLast = PPDStream::TakeLine(line) || FixLine(line);
    lastLine = line;
    return resultOfLast;
}

bool PPDFileStream::FixLine(std::string_view& line) {
    if (!chunked || !EndOfFile() || gEndOfPPD) {
        return false;
    }
    line = {joined.data(), line.copy(joined.data(), line.size())}; // the next piece overwrites it
    bool isEnded = false;
    while (!isEnded && EndOfFile() && Setup()) {
        lineMayHoldNul = lineMayHoldNul || mayHoldNuls;
        isEnded = ContinueLine(line, joined.data());
    }
    if (hasReadFault) {
        line = {};
    }
    return isEnded;
}

void PPDFileStream::UngetLine() {
    statusAfterHandedBack = status;
    status = kStreamGood;
    hasHandedBack = true;
}

} // namespace torka
