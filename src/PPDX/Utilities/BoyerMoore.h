#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Searches bytes for a pattern of at most 255 bytes (a longer one is cut to its first 255).
//
// Owns its pattern; the data searched are the caller's. Its answers have three peculiarities that callers
// know: (1) A pattern of one byte is reported at offset 0 and an empty one at -1, without looking at the
// data. (2) Text is looked up in the skip table as it stands, so that a search that ignores letter case may
// pass over a
//     match whose case differs from the pattern's.
// (3) The skip entry of byte 255 is written only by a pattern that holds this byte, and then stays; until
// then it is 0. A search always moves on by at least one byte and never reads outside the data.

namespace torka {

class BoyerMoore {
public:
    static constexpr std::size_t kPatternCapacity = 255;

    BoyerMoore(const char* pattern, short length, const void* data, long dataLength);
    BoyerMoore(const BoyerMoore&) = delete;
    BoyerMoore& operator=(const BoyerMoore&) = delete;
    virtual ~BoyerMoore();

    virtual void SetSearchString(const char* text, short length);
    virtual void SetSearchString(const unsigned char* text); // its first byte is its length
    // Takes the first stored byte for the length: what a pattern was set with as a length-prefixed text comes
    // back, of one set from plain bytes as many as its first byte says, without that byte. `out` holds 256
    // bytes.
    virtual void GetSearchString(char* out);
    // Null data have length 0.
    virtual void SetSearchData(const void* newData, long newLength);
    // The offset of the first match after the start offset, relative to it; -1 when there is none.
    virtual long Search();
    // Sets a new pattern when one is given, and the start offset. -1 for a negative offset.
    virtual long Search(long offset, const char* text, short length);
    virtual long Search(long offset, const unsigned char* text);
    virtual void PrepareSearchData();
    virtual void CleanupSearchData();
    virtual void BuildSkipTable();
    virtual void SetCaseSensitve(bool isSensitive);
    virtual bool GetCaseSensitive();
    virtual short GetSearchStringLength();

private:
    void Store(const void* bytes, std::size_t length, std::size_t start);
    bool Matches(unsigned char left, unsigned char right) const;

    std::array<std::uint8_t, 256> skip{};
    std::array<std::uint8_t, kPatternCapacity + 1> pattern{}; // with its length byte when it was set with one
    std::int16_t patternLength = 0;
    const std::uint8_t* data = nullptr;
    long dataLength = 0;
    long startOffset = 0;
    const std::uint8_t* scan = nullptr;
    std::uint8_t caseInsensitive = 0;
    std::uint8_t patternStart = 0; // 1 behind a length byte
};

} // namespace torka
