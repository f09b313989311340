#pragma once

#include "bidi/records/RecordEncoding.h"

#include <functional>

namespace torka {

// Whether a record could be written under this name: 1 to 36 characters that may stand in a PPD's main
// keyword (PPD 4.3: printable ASCII, no blank, ":" or "/") and that break neither a line of the data file nor
// a message to the spooler ("=", quotes, backslash, "*").
bool isWritableRecordName(std::string_view recordName);

// Cuts a payload into chunks: calls `take` with the name and the Base64 text of each in order, last with the
// end mark, whose text is empty. False, with no call made, when the record is refused: a name that cannot be
// written, more than 0x1000000 bytes, no data although the size is not 0, or so many chunks that their names
// would not fit their limit.
bool encodeRecord(std::string_view recordName, const void* data, std::size_t size,
                  const std::function<void(std::string_view chunkName, std::string_view text)>& take);

// Gathers pieces of text into lines or blocks that stay below 1,022 characters: a piece that would make one
// reach that length begins the next.
class PieceGatherer {
public:
    // Each block begins with `blockStart` and goes, ended by `blockEnd`, to `take`.
    PieceGatherer(std::string_view blockStart, std::string_view blockEnd,
                  std::function<void(std::string_view)> take);
    void Add(std::string_view piece);
    // Hands over the last block.
    void Flush();

private:
    std::string start;
    std::string end;
    std::function<void(std::string_view)> sink;
    std::string block;
};

} // namespace torka
