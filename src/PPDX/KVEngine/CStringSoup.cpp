// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace torka {

namespace {

constexpr std::size_t reservedTexts = 512;
constexpr std::size_t firstBlock = 1024; // bytes; a small description has few texts
constexpr std::size_t laterBlock = 8192;

// Every process has its own hashes, so that nobody can write a description whose texts collide.
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

std::string_view upToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

} // namespace

CStringSoup::CStringSoup() { texts.reserve(reservedTexts); }

std::int64_t CStringSoup::Insert(std::string_view text) { return InsertWhole(upToNul(text)); }

std::int64_t CStringSoup::InsertWhole(std::string_view text) {
    const std::uint64_t hash = hashText(text);
    if (const std::int64_t known = Find(text, hash); known >= 0) {
        return known;
    }
    if (index.Full()) {
        index.Grow([this](std::uint32_t i) { return hashText(texts[i].View()); });
    }
    const std::size_t added = texts.size();
    texts.push_back({Keep(text), text.size()});
    index.Add(hash, static_cast<std::uint32_t>(added));
    return static_cast<std::int64_t>(added);
}

const char* CStringSoup::Find(std::int64_t position) const {
    if (position < 0 || static_cast<std::size_t>(position) >= texts.size()) {
        return nullptr;
    }
    return texts[static_cast<std::size_t>(position)].bytes;
}

std::int64_t CStringSoup::Find(std::string_view text) const {
    text = upToNul(text);
    return Find(text, hashText(text));
}

std::int64_t CStringSoup::Find(std::string_view text, std::uint64_t hash) const {
    const std::uint32_t found = index.Find(hash, [&](std::uint32_t i) { return texts[i].View() == text; });
    return found == PositionTable::none ? -1 : static_cast<std::int64_t>(found);
}

const char* CStringSoup::Keep(std::string_view text) {
    const std::size_t size = text.size() + 1;
    if (size > available) {
        available = std::max(size, blocks.empty() ? firstBlock : laterBlock);
        next = blocks.emplace_back(std::make_unique_for_overwrite<char[]>(available)).get();
    }
    char* const kept = next;
    *std::copy(text.begin(), text.end(), kept) = '\0';
    next += size;
    available -= size;
    return kept;
}

void CStringSoup::Clear() {
    texts.clear();
    index.Clear();
    blocks.clear();
    available = 0;
}

std::size_t CStringSoup::size() const { return texts.size(); }

} // namespace torka
