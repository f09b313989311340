// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/PPDStream.h"

#include <array>
#include <memory>

// The lines of a description's file, read into memory in pieces of at most kPieceCapacity bytes.
//
// Owns the buffer, which is as large as the file up to that maximum. The caller owns the file, which must
// outlive the stream. A line that spans two pieces is returned whole.

namespace torka {

class PPDFile;

class PPDFileStream final : public PPDStream {
public:
    static constexpr long kPieceCapacity = 16'384; // fits the processor's cache, and touches few pages

    // Bad without a file, or when the file is empty or cannot be opened or read. The stream stays empty when
    // not chunked. Pieces may be smaller than kPieceCapacity; the lines are the same.
    PPDFileStream(PPDFile* source, bool chunked, long pieceCapacity = kPieceCapacity);
    PPDFileStream(const PPDFileStream&) = delete;
    PPDFileStream& operator=(const PPDFileStream&) = delete;
    ~PPDFileStream() override;

    bool TakeLine(std::string_view& line) override;
    // Returns the last line to the stream. The next TakeLine gives it with the same result, status and line
    // number, whatever the end-of-PPD flag is.
    void UngetLine();
    // Tells whether a read of the file failed. No line follows then, and the line that it cut is not given.
    bool HasReadFault() const { return hasReadFault; }
    // Returns false when the last line surely holds no NUL.
    bool LineMayHoldNul() const { return lineMayHoldNul; }

private:
    // Loads the next piece. Returns false without one: with status 2 at the end of the file, else with status
    // 1.
    bool Setup();
    // Completes a line that the end of its piece cut off. Returns what TakeLine returns.
    bool FixLine(std::string_view& line);

    std::unique_ptr<char[]> buffer;
    long capacity = 0;
    bool inTemporaryMemory = false; // always true: there is one heap
    bool chunked = false;
    bool hasReadFault = false;
    PPDFile* file = nullptr;

    std::array<char, kLineCapacity> joined{}; // holds a line that spans pieces
    std::string_view lastLine;
    bool mayHoldNuls = true; // false when the piece holds none
    bool lineMayHoldNul = true;

    PPDStreamStatus statusAfterHandedBack = kStreamGood;
    bool resultOfLast = false;
    bool hasHandedBack = false;
};

} // namespace torka
