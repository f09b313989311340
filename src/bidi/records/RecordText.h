// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/RecordEncoding.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// Reads many records from the content of one two-way data file. One pass finds the places where records may
// begin; each record is then read at its place. The results equal those of CFileHdlr::stringReadData.
//
// Refers to the text, which must outlive it and must not change.
class RecordText {
public:
    explicit RecordText(std::string_view content);
    // As CFileHdlr::stringReadData.
    RecordBlock Read(std::string_view recordName, std::size_t* size) const;
    // The names of the records in the order of their first chunks, each once.
    std::vector<std::string> Names() const;
    // The same names, each with the size in bytes of what Read gives, 0 for nothing. Linear in the text, also
    // when records have no end marks.
    std::vector<std::pair<std::string, std::size_t>> Sizes() const;

private:
    std::string_view text;
    // The positions of "0000". Incomplete in a text with too many of them; `indexed` is false then.
    std::vector<std::size_t> zeros;
    bool indexed = true;
};

// Reads the record whose first chunk name stands at `position` in the text. Null at npos.
RecordBlock readRecordAt(std::string_view text, std::size_t position, ChunkName chunk, std::size_t& size);
// The position of `wanted` at or after `position`; npos for none. Takes linear time for any texts.
std::size_t findFrom(std::string_view text, std::string_view wanted, std::size_t position);

} // namespace torka
