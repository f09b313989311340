// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/given/BoyerMoore.h"

#include <algorithm>

namespace torka {

namespace {

unsigned char lower(unsigned char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<unsigned char>(byte - 'A' + 'a') : byte;
}

std::size_t positive(long length) { return length > 0 ? static_cast<std::size_t>(length) : 0; }

} // namespace

BoyerMoore::BoyerMoore(const char* text, short length, const void* searchData, long searchLength) {
    Store(text, text != nullptr ? positive(length) : 0, 0);
    BoyerMoore::BuildSkipTable();
    BoyerMoore::SetSearchData(searchData, searchLength);
}

BoyerMoore::~BoyerMoore() = default;

void BoyerMoore::Store(const void* bytes, std::size_t length, std::size_t start) {
    length = std::min(length, kPatternCapacity);
    pattern.fill(0);
    std::copy_n(static_cast<const std::uint8_t*>(bytes), length, pattern.begin() + start);
    pattern[0] = start == 0 ? pattern[0] : static_cast<std::uint8_t>(length);
    patternLength = static_cast<std::int16_t>(length);
    patternStart = static_cast<std::uint8_t>(start);
}

void BoyerMoore::SetSearchString(const char* text, short length) {
    Store(text, text != nullptr ? positive(length) : 0, 0);
    BuildSkipTable();
}

void BoyerMoore::SetSearchString(const unsigned char* text) {
    const std::size_t length = text != nullptr ? *text : 0;
    Store(length > 0 ? text + 1 : nullptr, length, 1);
    BuildSkipTable();
}

void BoyerMoore::GetSearchString(char* out) {
    const std::size_t length = pattern[0];
    std::copy_n(pattern.begin() + 1, length, out);
    out[length] = '\0';
}

void BoyerMoore::SetSearchData(const void* newData, long newLength) {
    data = static_cast<const std::uint8_t*>(newData);
    dataLength = newData != nullptr ? std::max(newLength, 0L) : 0;
    startOffset = 0;
}

bool BoyerMoore::Matches(unsigned char left, unsigned char right) const {
    return left == right || (caseInsensitive != 0 && lower(left) == lower(right));
}

long BoyerMoore::Search() {
    PrepareSearchData();
    if (patternLength < 2) {
        CleanupSearchData();
        return patternLength - 1;
    }
    if (startOffset < 0 || startOffset > dataLength) {
        return -1;
    }
    const long limit = dataLength - startOffset;
    const std::uint8_t* const sought = pattern.data() + patternStart;
    const long last = patternLength - 1;
    for (long position = last; position < limit;) {
        long index = last;
        while (index >= 0 && Matches(scan[position], sought[index])) {
            --position;
            --index;
        }
        if (index < 0) {
            CleanupSearchData();
            return position + 1;
        }
        position += std::max<long>(skip[scan[position]], patternLength - index);
    }
    return -1;
}

long BoyerMoore::Search(long offset, const char* text, short length) {
    if (text != nullptr) {
        SetSearchString(text, length);
    }
    startOffset = offset;
    return Search();
}

long BoyerMoore::Search(long offset, const unsigned char* text) {
    if (text != nullptr) {
        SetSearchString(text);
    }
    startOffset = offset;
    return Search();
}

void BoyerMoore::PrepareSearchData() {
    const bool isInside = data != nullptr && startOffset >= 0 && startOffset <= dataLength;
    scan = isInside ? data + startOffset : data;
}

void BoyerMoore::CleanupSearchData() { scan = nullptr; }

void BoyerMoore::BuildSkipTable() {
    std::fill_n(skip.begin(), 255, static_cast<std::uint8_t>(patternLength));
    for (std::int16_t i = 0; i < patternLength; ++i) {
        skip[pattern[static_cast<std::size_t>(patternStart + i)]] =
            static_cast<std::uint8_t>(patternLength - 1 - i);
    }
}

void BoyerMoore::SetCaseSensitve(bool isSensitive) { caseInsensitive = isSensitive ? 0 : 1; }

bool BoyerMoore::GetCaseSensitive() { return caseInsensitive == 0; }

short BoyerMoore::GetSearchStringLength() { return patternLength; }

} // namespace torka
