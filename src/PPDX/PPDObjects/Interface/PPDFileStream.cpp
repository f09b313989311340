#include "PPDX/PPDObjects/Interface/PPDFileStream.h"

#include "PPDFile.h"
#include "PPDX/Utilities/ModelState.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace torka {

PPDFileStream::PPDFileStream(PPDFile* source, bool inPieces)
    : chunked(inPieces)
    , file(source) {
    if (file == nullptr || !chunked || !Setup()) {
        status = kStreamBad;
    }
}

PPDFileStream::~PPDFileStream() = default;

// Loads the next piece. At the end of the file the stream becomes empty and bad.
bool PPDFileStream::Setup() {
    PPDStream::Setup(nullptr, 0);
    if (!file->dataForkOpen() && !file->openDataFork(fsRdPerm)) {
        return false;
    }
    if (!buffer) {
        capacity = static_cast<long>(std::min<std::uint64_t>(file->dataForkSize(), kPieceCapacity));
        buffer.reset(capacity > 0 ? new (std::nothrow) char[static_cast<std::size_t>(capacity)] : nullptr);
    }
    long count = buffer ? capacity : 0;
    const OSStatus result = buffer ? file->dataForkRead(buffer.get(), count) : eofErr;
    if (result == noErr || result == eofErr) {
        PPDStream::Setup(buffer.get(), count);
    }
    return Good() || result == eofErr;
}

bool PPDFileStream::GetLine(char* line) {
    if (hasHandedBack) {
        hasHandedBack = false;
        std::memcpy(line, handedBack.data(), handedBack.size());
        status = statusAfterHandedBack;
        return resultOfLast;
    }
    resultOfLast = PPDStream::GetLine(line);
    if (!resultOfLast && chunked && EndOfFile() && !gEndOfPPD) {
        resultOfLast = FixLine(line, lineLength);
    }
    return resultOfLast;
}

// Completes a line that the end of the piece cut off after `used` bytes.
bool PPDFileStream::FixLine(char* line, std::size_t used) {
    if (file == nullptr || !Setup()) {
        status = kStreamBad;
        return false;
    }
    return ReadLineInto(line, used);
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
