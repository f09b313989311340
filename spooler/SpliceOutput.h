// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/ByteSink.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace torka {

// The output side of a Splicer. Gathers small pieces into larger writes. Holds back what follows a mark until
// it is known whether text must be inserted there. Does not own the sink.
//
// After a failed write nothing more reaches the sink; Error() keeps the errno value.
class SpliceOutput {
public:
    explicit SpliceOutput(ByteSink& target)
        : sink(target) {}

    // Writes bytes of the document.
    void Pass(std::string_view bytes);
    // Writes bytes of our own on a line of their own: writes `lineEnd` first when the last line has no end.
    // REQUIRES: no mark is open.
    void Insert(std::string_view bytes, std::string_view lineEnd);

    // Holds back all further bytes. REQUIRES: no mark is open.
    void OpenMark();
    bool HasMark() const { return isMarked; }
    std::size_t MarkedBytes() const { return marked.size(); }
    // Tells whether anything but comments and blank lines waits; false without a mark.
    bool HasCodeSinceMark() const;
    // Inserts at the mark (nothing for "") and writes what waited.
    void CloseMark(std::string_view insertion, std::string_view lineEnd);

    // REQUIRES: no mark is open.
    void Flush();

    int Error() const { return error; }
    std::uint64_t Inserted() const { return inserted; }
    std::uint64_t Written() const { return written; }

private:
    void Write(std::string_view bytes);
    void Send(std::string_view bytes);

    ByteSink& sink;
    std::string pending;
    std::string marked;
    bool isMarked = false;
    char lastByte = '\n'; // of the bytes before the mark when one is open
    int error = 0;
    std::uint64_t inserted = 0;
    std::uint64_t written = 0; // bytes that the sink took
};

} // namespace torka
