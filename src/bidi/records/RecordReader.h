#pragma once

#include "bidi/records/RecordEncoding.h"

#include <vector>
#include <zlib.h>

namespace torka {

// Rebuilds one record's payload from its chunks' texts, given in order.
//
// Owns the block that it fills; Finish hands it over. Chunks are inflated some at a time, which gives what
// inflating each at once would give. What an evil stream can make of itself ends at maximumPayloadRead bytes.
class RecordReader {
public:
    RecordReader();
    RecordReader(const RecordReader&) = delete;
    RecordReader& operator=(const RecordReader&) = delete;
    ~RecordReader();

    // Takes a chunk's Base64 text; only its first 158 decoded bytes count. False when the record ends: an
    // empty chunk, an end of the stream, an error in it, a full block.
    bool Add(const char* text);
    // The payload so far, its size in `size`. Null when memory ran out. Nothing may be added afterwards.
    RecordBlock Finish(std::size_t& size);

private:
    bool Inflate();
    bool Grow();

    z_stream stream{};
    bool open = false;     // the stream can take more
    bool noMemory = false; // ends in nothing
    std::vector<Bytef> compressed;
    std::size_t compressedLength = 0;
    RecordBlock block;
    std::size_t capacity = 0; // of `block`, less its NUL
    std::size_t length = 0;
};

} // namespace torka
