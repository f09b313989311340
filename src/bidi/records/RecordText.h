#pragma once

#include "bidi/records/RecordEncoding.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// The content of a two-way data file, for whoever reads many records of it: one pass finds where records may
// begin, and each record is then read where it stands, with the result of CFileHdlr::stringReadData.
//
// Looks at the text, which must outlive it and not change.
class RecordText {
public:
    explicit RecordText(std::string_view content);
    // As CFileHdlr::stringReadData.
    RecordBlock Read(std::string_view recordName, std::size_t* size) const;
    // The names of the records in the order of their first chunks, each once.
    std::vector<std::string> Names() const;
    // The same names, each with the size in bytes of what Read gives, 0 for nothing. Linear in the text, also when
    // records have no end marks.
    std::vector<std::pair<std::string, std::size_t>> Sizes() const;

private:
    std::string_view text;
    // Where "0000" stands, for Read. Not complete in a text made to hold too many: `indexed` is false then.
    std::vector<std::size_t> zeros;
    bool indexed = true;
};

// Reads the record whose first chunk name stands first at `position` in the text; none at npos.
RecordBlock readRecordAt(std::string_view text, std::size_t position, ChunkName chunk, std::size_t& size);
// Where a text is found at or after `position`, npos if it is not. In one pass, whatever the texts are.
std::size_t findFrom(std::string_view text, std::string_view wanted, std::size_t position);

} // namespace torka
