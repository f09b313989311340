// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDFileStream.h"

#include "PPDFile.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "PPDX/Utilities/ModelState.h"

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
    if (!file->dataForkOpen() && !file->openDataFork(fsRdPerm)) {
        return false;
    }
    if (!buffer) {
        capacity = static_cast<long>(
            std::min<std::uint64_t>(file->dataForkSize(), static_cast<std::uint64_t>(capacity)));
        buffer.reset(capacity > 0 ? new (std::nothrow) char[static_cast<std::size_t>(capacity)] : nullptr);
        gMemoryShortages += capacity > 0 && !buffer ? 1U : 0U;
    }
    long count = buffer ? capacity : 0;
    const OSStatus result = buffer ? file->dataForkRead(buffer.get(), count) : eofErr;
    if (result != noErr && result != eofErr) {
        return false;
    }
    PPDStream::Setup(buffer.get(), count);
    // Most files hold neither byte. The lines then need no search for them.
    const auto size = static_cast<std::size_t>(count);
    mayHoldReturns = count > 0 && std::memchr(buffer.get(), '\r', size) != nullptr;
    mayHoldEndBytes = count > 0 && std::memchr(buffer.get(), 0xFF, size) != nullptr;
    if (count == 0) {
        status = kStreamEndOfFile;
    }
    return Good();
}

bool PPDFileStream::GetLine(char* line) {
    if (hasHandedBack) {
        hasHandedBack = false;
        std::memcpy(line, handedBack.data(), handedBack.size());
        status = statusAfterHandedBack;
        return resultOfLast;
    }
    resultOfLast = PPDStream::GetLine(line) || FixLine(line);
    return resultOfLast;
}

bool PPDFileStream::FixLine(char* line) {
    while (chunked && EndOfFile() && !gEndOfPPD && Setup()) {
        if (ReadLineInto(line, lineLength)) {
            return true;
        }
    }
    return false;
}

void PPDFileStream::UngetLine(const char* line) {
    const std::size_t length = strnlen(line, kLineCapacity - 1);
    std::copy_n(line, length, handedBack.begin());
    handedBack[length] = '\0';
    statusAfterHandedBack = status;
    status = kStreamGood;
    hasHandedBack = true;
}

} // namespace torka
