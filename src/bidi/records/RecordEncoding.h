#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

// What the two carriers of two-way records share: limits, chunk names, payloads.
//
// A record is a named payload, compressed as one zlib stream and cut into pieces of at most 158 bytes. Each
// piece travels as Base64 under a chunk name, the record name followed by the piece's number in hexadecimal;
// a chunk without text is the end mark.

namespace torka {

inline constexpr std::size_t maximumRecordSize = 0x1000000; // payload bytes that a writer takes
inline constexpr std::size_t maximumPayloadRead = 0xFFFFFF; // payload bytes that a reader gives
inline constexpr std::size_t maximumRecordName = 36;        // bytes
inline constexpr std::size_t maximumChunkName = 40;         // bytes, also the PPD format's for a main keyword
inline constexpr std::size_t chunkBytes = 158;              // compressed bytes in a chunk
inline constexpr std::size_t chunkTextBuffer = 256;         // a chunk's text while it is read, with its NUL

struct FreeBlock {
    void operator()(char* block) const { std::free(block); }
};
// A payload as it was read, with a NUL behind it. release() leaves a block that free() takes.
using RecordBlock = std::unique_ptr<char[], FreeBlock>;

// The name of a record's chunks, one number after another.
class ChunkName {
public:
    // Stands at number 0.
    explicit ChunkName(std::string_view recordName);

    // False for a record name that is empty, longer than 36 bytes, or broken by a line end: no record has it.
    bool IsUsable() const { return usable; }
    // False when the number makes the name longer than 40 bytes: there is no such chunk.
    bool SetNumber(std::size_t number);
    const std::string& Text() const { return text; }

private:
    std::size_t nameLength;
    bool usable;
    std::string text;
};

// Wide payloads are the 32-bit units of wchar_t in this machine's order; bytes behind the last whole unit are
// dropped.
std::wstring wideFromPayload(std::string_view payload);
std::string_view payloadFromWide(std::wstring_view text);

} // namespace torka
