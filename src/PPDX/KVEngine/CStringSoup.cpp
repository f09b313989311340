// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::size_t reservedTexts = 512;
constexpr std::size_t firstBlock = 1024; // bytes; a small description has few texts
constexpr std::size_t laterBlock = 8192;

std::string_view upToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

} // namespace

CStringSoup::CStringSoup() { texts.reserve(reservedTexts); }

inline std::int64_t CStringSoup::Find(std::string_view text, std::uint64_t hash) const {
    const std::uint32_t found =
        index.Find(hash, [&](std::uint32_t i) { return isSameText(texts[i].View(), text); });
    return found == PositionTable::none ? -1 : static_cast<std::int64_t>(found);
}

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
