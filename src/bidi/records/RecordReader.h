// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/records/RecordEncoding.h"

#include <vector>
#include <zlib.h>

namespace torka {

// Rebuilds one record's payload from its chunks' texts, given in order.
//
// Owns the block until Finish returns it. Inflates several chunks at a time; the result is the same as with
// each chunk on its own. maximumPayloadRead limits the output of a hostile stream.
class RecordReader {
public:
    RecordReader();
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;
    ~RecordReader();

    // Adds a chunk's Base64 text; only its first 158 decoded bytes count. False when the record ends: at an
    // empty chunk, the end of the stream, an error in the stream, or a full block.
    bool Add(const char* text);
    // Returns the payload so far, and its size in `size`. Null when memory ran out. Add must not follow.
    RecordBlock Finish(std::size_t& size);

private:
    bool Inflate();
    bool Grow();

    z_stream stream{};
    bool open = false;     // the stream can take more
    bool noMemory = false; // Finish then returns null
    std::vector<Bytef> compressed;
    std::size_t compressedLength = 0;
    RecordBlock block;
    std::size_t capacity = 0; // of `block`, without its NUL
    std::size_t length = 0;
};

} // namespace torka
