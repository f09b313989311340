#include "PPDX/KVEngine/CStringSoup.h"

#include <algorithm>
#include <cstring>
#include <random>

namespace torka {

namespace {

constexpr std::size_t reservedTexts = 512;
constexpr std::size_t smallestBuffer = 64;

// Hashes are of this process only, so that no description can be made to collide.
std::uint64_t processSeed() {
    std::random_device device;
    return (std::uint64_t{device()} << 32U) | device();
}

std::uint64_t fold(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    const Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64U);
}

std::uint64_t hashText(std::string_view text) {
    static const std::uint64_t seed = processSeed();
    std::uint64_t hash = seed ^ text.size();
    for (std::size_t i = 0; i < text.size(); i += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, std::min(sizeof word, text.size() - i));
        hash = fold(word ^ 0xa0761d6478bd642fU, hash ^ 0xe7037ed1a0b428dbU);
    }
    return fold(hash, 0x8ebc6af09c88c6e3U);
}

std::string_view upToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

} // namespace

CStringSoup::CStringSoup() { texts.reserve(reservedTexts); }

std::int64_t CStringSoup::Insert(std::string_view text) {
    text = upToNul(text);
    const std::uint64_t hash = hashText(text);
    if (const std::int64_t known = Find(text, hash); known >= 0)
        return known;
    if (index.Full())
        index.Grow([this](std::uint32_t i) { return hashText(texts[i].View()); });
    const std::size_t added = texts.size();
    Text& entry = texts.emplace_back();
    entry.bytes = std::make_unique<char[]>(std::max(smallestBuffer, text.size() + 1));
    entry.length = text.size();
    std::copy(text.begin(), text.end(), entry.bytes.get()); // an empty text may have no bytes to point to
    index.Add(hash, static_cast<std::uint32_t>(added));
    return static_cast<std::int64_t>(added);
}

const char* CStringSoup::Find(std::int64_t position) const {
    if (position < 0 || static_cast<std::size_t>(position) >= texts.size())
        return nullptr;
    return texts[static_cast<std::size_t>(position)].bytes.get();
}

std::int64_t CStringSoup::Find(std::string_view text) const {
    text = upToNul(text);
    return Find(text, hashText(text));
}

std::int64_t CStringSoup::Find(std::string_view text, std::uint64_t hash) const {
    const std::uint32_t found = index.Find(hash, [&](std::uint32_t i) { return texts[i].View() == text; });
    return found == PositionTable::none ? -1 : static_cast<std::int64_t>(found);
}

void CStringSoup::Clear() {
    texts.clear();
    index.Clear();
}

std::size_t CStringSoup::size() const { return texts.size(); }

} // namespace torka
