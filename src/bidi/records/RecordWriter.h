// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/RecordEncoding.h"

#include <functional>

namespace torka {

// Whether a record can be written under this name: 1 to 36 characters that a PPD's main keyword may contain
// (PPD 4.3: printable ASCII without blank, ":" and "/"), without the characters that would break a line of
// the data file or a message to the spooler ("=", quotes, backslash, "*").
bool isWritableRecordName(std::string_view recordName);

// Cuts a payload into chunks. Calls `take` with the name and the Base64 text of each chunk in order, and at
// the end with the end mark, whose text is empty. Refuses a record, without a call, and returns false for a
// name that cannot be written, more than 0x1000000 bytes, null data with a size other than 0, or so many
// chunks that a chunk name would exceed its limit.
bool encodeRecord(std::string_view recordName, const void* data, std::size_t size,
                  const std::function<void(std::string_view chunkName, std::string_view text)>& take);

// Gathers pieces of text into lines or blocks of less than 1,022 characters. A piece that would make a block
// reach that length begins the next block.
class PieceGatherer {
public:
    // `take` receives each block, which begins with `blockStart` and ends with `blockEnd`.
    PieceGatherer(std::string_view blockStart, std::string_view blockEnd,
                  std::function<void(std::string_view)> take);
    void Add(std::string_view piece);
    // Passes the last block to `take`.
    void Flush();

private:
    std::string start;
    std::string end;
    std::function<void(std::string_view)> sink;
    std::string block;
};

} // namespace torka
