// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/RecordReader.h"

#include "bidi/text/StandardStreams.h"

#include <algorithm>
#include <cups/http.h>

namespace torka {

namespace {

constexpr std::size_t firstCapacity = 256;
constexpr std::size_t chunksAtOnce = 64;

} // namespace

RecordReader::RecordReader()
    // The decoder writes a NUL behind its output.
    : compressed(chunksAtOnce * chunkBytes + 1) {
    open = inflateInit_(&stream, "1.2.5", static_cast<int>(sizeof stream)) == Z_OK;
    noMemory = !open || !Grow();
}

RecordReader::~RecordReader() { inflateEnd(&stream); }

// Doubles the capacity up to the limit. False at the limit, or when memory runs out.
bool RecordReader::Grow() {
    const std::size_t larger = std::min(std::max(firstCapacity, capacity * 2), maximumPayloadRead);
    if (larger == capacity) {
        return false;
    }
    char* moved = static_cast<char*>(std::realloc(block.get(), larger + 1));
    if (!moved) {
        noMemory = true;
        return false;
    }
    static_cast<void>(block.release()); // realloc has taken over the block
    block.reset(moved);
    capacity = larger;
    return true;
}

bool RecordReader::Add(const char* text) {
    if (!open || noMemory) {
        return false;
    }
    int decoded = static_cast<int>(chunkBytes) + 1;
    auto* place = reinterpret_cast<char*>(compressed.data() + compressedLength);
    if (!httpDecode64_2(place, &decoded, text) || decoded <= 0) {
        return false;
    }
    compressedLength += static_cast<std::size_t>(decoded);
    return compressedLength + chunkBytes < compressed.size() || Inflate();
}

// False when the record ends.
bool RecordReader::Inflate() {
    stream.next_in = compressed.data();
    stream.avail_in = static_cast<uInt>(compressedLength);
    compressedLength = 0;
    // When the block is full, the stream may hold pending output although it has read all input.
    while (open && (stream.avail_in != 0 || length == capacity)) {
        if (length == capacity && !Grow()) {
            open = false;
            break;
        }
        stream.next_out = reinterpret_cast<Bytef*>(block.get()) + length;
        stream.avail_out = static_cast<uInt>(capacity - length);
        const int result = inflate(&stream, Z_NO_FLUSH);
        length = capacity - stream.avail_out;
        if (result == Z_BUF_ERROR && stream.avail_in == 0) {
            break; // the stream held no pending output
        }
        if (result < 0) {
            const char* message = stream.msg ? stream.msg : zError(result);
            standardStreams().Error("ERROR: inflate returned " + std::to_string(result) + " (" + message +
                                    ")\n");
        }
        // A stream that requires a preset dictionary ends here, because there is none.
        open = result == Z_OK;
    }
    return open;
}

RecordBlock RecordReader::Finish(std::size_t& size) {
    size = 0;
    if (open && !noMemory && compressedLength != 0) {
        Inflate();
    }
    open = false;
    if (noMemory) {
        return nullptr;
    }
    if (char* fitted = static_cast<char*>(std::realloc(block.get(), length + 1))) {
        static_cast<void>(block.release());
        block.reset(fitted);
    }
    block[length] = '\0';
    size = length;
    capacity = length;
    return std::move(block);
}

} // namespace torka
