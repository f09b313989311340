// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/TextHash.h"

#include <cstring>
#include <random>

namespace torka {

namespace {

std::uint64_t processSeed() {
    std::random_device device;
    return (std::uint64_t{device()} << 32U) | device();
}

std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

template <typename Word>
std::uint64_t load(const char* bytes) {
    Word word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

// Loads a text of at most 16 bytes into two words. The words may overlap; their overlap follows from the
// length, which is hashed too.
struct TwoWords {
    std::uint64_t first = 0;
    std::uint64_t second = 0;

    explicit TwoWords(std::string_view text) {
        const char* const end = text.data() + text.size();
        if (text.size() >= sizeof(std::uint64_t)) {
            first = load<std::uint64_t>(text.data());
            second = load<std::uint64_t>(end - sizeof(std::uint64_t));
        } else if (text.size() >= sizeof(std::uint32_t)) {
            first = load<std::uint32_t>(text.data());
            second = load<std::uint32_t>(end - sizeof(std::uint32_t));
        } else {
            for (const char byte : text) {
                first = (first << 8U) | static_cast<unsigned char>(byte);
            }
        }
    }
};

} // namespace

std::uint64_t hashText(std::string_view text) {
    static const std::uint64_t seed = processSeed();
    // Both factors of every product hold the seed, so that no text can make one of them zero.
    static const std::uint64_t key = processSeed();
    std::uint64_t hash = seed ^ text.size();
    for (; text.size() > sizeof(TwoWords); text.remove_prefix(sizeof(TwoWords))) {
        const TwoWords words(text.substr(0, sizeof(TwoWords)));
        hash = fold(words.first ^ key, words.second ^ hash);
    }
    const TwoWords words(text);
    return fold(fold(words.first ^ key, words.second ^ hash), 0x8ebc6af09c88c6e3U);
}

} // namespace torka
