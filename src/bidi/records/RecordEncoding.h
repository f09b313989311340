// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

// Limits, chunk names and payloads of two-way records, for both carriers: data file and PPD.
//
// A record is a named payload. It is compressed as one zlib stream and cut into pieces of at most 158 bytes.
// A chunk is a piece in Base64 under a chunk name: the record name followed by the piece's number in
// hexadecimal. A chunk without text is the end mark.

namespace torka {

inline constexpr std::size_t maximumRecordSize = 0x1000000; // payload bytes that a writer accepts
inline constexpr std::size_t maximumPayloadRead = 0xFFFFFF; // payload bytes that a reader returns
inline constexpr std::size_t maximumRecordName = 36;        // bytes
inline constexpr std::size_t maximumChunkName = 40;         // bytes; PPD 4.3 limits main keywords to 40
inline constexpr std::size_t chunkBytes = 158;              // compressed bytes in a chunk
inline constexpr std::size_t chunkTextBuffer = 256;         // bytes for a chunk's text and its NUL

struct FreeBlock {
    void operator()(char* block) const { std::free(block); }
};
// A payload with a NUL behind it. free() frees the block that release() returns.
using RecordBlock = std::unique_ptr<char[], FreeBlock>;

// The name of a record's chunk; SetNumber selects the chunk.
class ChunkName {
public:
    // Begins at number 0.
    explicit ChunkName(std::string_view recordName);

    // False for a record name that no record can have: empty, longer than 36 bytes, or with a line end.
    bool IsUsable() const { return usable; }
    // False when the number makes the name longer than 40 bytes; no such chunk can exist.
    bool SetNumber(std::size_t number);
    const std::string& Text() const { return text; }

private:
    std::size_t nameLength;
    bool usable;
    std::string text;
};

// Wide payloads consist of 32-bit wchar_t units in the byte order of this machine. wideFromPayload drops
// bytes behind the last whole unit.
std::wstring wideFromPayload(std::string_view payload);
std::string_view payloadFromWide(std::wstring_view text);

} // namespace torka
