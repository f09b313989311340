// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Searches bytes for a pattern of at most 255 bytes (a longer one is cut to its first 255).
//
// Owns its pattern; the caller owns the data. Its results have three peculiarities:
//
// (1) A search for a pattern of one byte returns 0, and one for an empty pattern -1, without reading the
// data.
//
// (2) The skip table is indexed by the data's bytes with their letter case. A search that ignores letter case
// may therefore miss a match whose case differs from the pattern's.
//
// (3) The skip entry of byte 255 is 0 until a pattern with this byte sets it; later patterns keep it.
//
// A search always advances by at least one byte and never reads outside the data.

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
    // Copies the pattern that a length-prefixed text set, and a NUL, to `out`, which holds 256 bytes. For a
    // pattern set from plain bytes the function takes the first byte as the length, too, and copies the bytes
    // behind it.
    virtual void GetSearchString(char* out);
    // Null data count as empty.
    virtual void SetSearchData(const void* newData, long newLength);
    // The offset of the first match, relative to the start offset; -1 without a match.
    virtual long Search();
    // Set the start offset, and the pattern unless it is null, and search. -1 for a negative offset.
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
    std::array<std::uint8_t, kPatternCapacity + 1> pattern{}; // may begin with a length byte
    std::int16_t patternLength = 0;
    const std::uint8_t* data = nullptr;
    long dataLength = 0;
    long startOffset = 0;
    const std::uint8_t* scan = nullptr;
    std::uint8_t caseInsensitive = 0;
    std::uint8_t patternStart = 0; // 1 when `pattern` begins with a length byte
};

} // namespace torka
