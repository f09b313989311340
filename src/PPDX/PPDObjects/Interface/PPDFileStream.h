#pragma once

#include "PPDX/PPDObjects/Interface/PPDStream.h"

#include <array>
#include <memory>

// The lines of a description's file, read into memory by pieces of at most kPieceCapacity bytes.
//
// Owns the buffer, which is as large as the file up to that limit; the file is the caller's and must outlive
// the stream. A line that goes over a piece's end comes out whole, as from one piece.

namespace torka {

class PPDFile;

class PPDFileStream : public PPDStream {
public:
    static constexpr long kPieceCapacity = 32'768; // stays in the processor's cache while it is read

    // Bad without a file or when it cannot be opened or read, or is empty. The stream stays empty when not
    // chunked.
    // Pieces may be made smaller than kPieceCapacity; the lines are the same.
    PPDFileStream(PPDFile* source, bool chunked, long pieceCapacity = kPieceCapacity);
    PPDFileStream(const PPDFileStream&) = delete;
    PPDFileStream& operator=(const PPDFileStream&) = delete;
    ~PPDFileStream() override;

    bool GetLine(char* line) override;
    // Hands back the line read last: the next GetLine gives `line` with the same result, status and line
    // number, whatever the end-of-PPD flag says. One line at a time; a second one replaces the first.
    void UngetLine(const char* line);

private:
    // Loads the next piece. False without one: with status 2 at the end of the file, else with status 1.
    bool Setup();
    // Completes, from the pieces that follow, a line that the end of its piece cut off. True as GetLine.
    bool FixLine(char* line);

    std::unique_ptr<char[]> buffer;
    long capacity = 0;
    bool inTemporaryMemory = false; // always: there is one heap
    bool chunked = false;
    PPDFile* file = nullptr;

    std::array<char, kLineCapacity> handedBack{};
    PPDStreamStatus statusAfterHandedBack = kStreamGood;
    bool resultOfLast = false;
    bool hasHandedBack = false;
};

} // namespace torka
