// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace torka {

namespace detail {

// Both factors of every product of a hash hold a secret, so that no text can make one of them zero.
struct HashSecrets {
    std::uint64_t seed;
    std::uint64_t key;
};

HashSecrets drawHashSecrets();

inline const HashSecrets& hashSecrets() {
    static const HashSecrets secrets = drawHashSecrets();
    return secrets;
}

inline std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

// A text of at most 16 bytes as two words. The words may overlap. The length and the words are equal exactly
// when the texts are.
struct TwoWords {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    explicit TwoWords(std::string_view text) {
        const char* const end = text.data() + text.size();
        if (text.size() >= sizeof(std::uint64_t)) {
            first = Load<std::uint64_t>(text.data());
            second = Load<std::uint64_t>(end - sizeof(std::uint64_t));
        } else if (text.size() >= sizeof(std::uint32_t)) {
            first = Load<std::uint32_t>(text.data());
            second = Load<std::uint32_t>(end - sizeof(std::uint32_t));
        } else {
            for (const char byte : text) {
                first = (first << 8U) | static_cast<unsigned char>(byte);
            }
        }
    }

    template <typename Word>
    static std::uint64_t Load(const char* bytes) {
        Word word = 0;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }
};

} // namespace detail

namespace detail {

inline std::uint64_t foldWords(std::string_view text, std::uint64_t hash) {
    const TwoWords words(text);
    return fold(words.first ^ hashSecrets().key, words.second ^ hash);
}

// Folds all but the last 16 bytes, and removes them from the text.
std::uint64_t foldBeginning(std::string_view& text, std::uint64_t hash);

} // namespace detail

// Returns a hash for tables in memory. Every process has its own hashes, so that nobody can write a
// description whose texts collide.
inline std::uint64_t hashText(std::string_view text) {
    std::uint64_t hash = detail::hashSecrets().seed ^ text.size();
    if (text.size() > sizeof(detail::TwoWords)) {
        hash = detail::foldBeginning(text, hash);
    }
    return detail::fold(detail::foldWords(text, hash), 0x8ebc6af09c88c6e3U);
}

// Compares the texts. Most keywords and options have at most 16 bytes; for these it calls no function.
inline bool isSameText(std::string_view left, std::string_view right) {
    using detail::TwoWords;
    if (left.size() != right.size() || left.size() > sizeof(TwoWords)) {
        return left == right;
    }
    const TwoWords one(left);
    const TwoWords other(right);
    return ((one.first ^ other.first) | (one.second ^ other.second)) == 0;
}

} // namespace torka
