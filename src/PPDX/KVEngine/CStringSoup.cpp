#include "PPDX/KVEngine/CStringSoup.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace torka {

namespace {

constexpr std::size_t reservedTexts = 512;
constexpr std::size_t smallestBuffer = 64;

std::string_view upToNul(std::string_view text) { return text.substr(0, text.find('\0')); }

} // namespace

CStringSoup::CStringSoup() { texts.reserve(reservedTexts); }

std::int64_t CStringSoup::Insert(std::string_view text) {
    text = upToNul(text);
    if (const std::int64_t known = Find(text); known >= 0)
        return known;
    const auto hashOf = [this](std::uint32_t i) { return std::hash<std::string_view>()(texts[i].View()); };
    if (index.Full())
        index.Grow(hashOf);
    Text entry{std::make_unique<char[]>(std::max(smallestBuffer, text.size() + 1)), text.size()};
    std::memcpy(entry.bytes.get(), text.data(), text.size());
    texts.push_back(std::move(entry));
    const std::size_t added = texts.size() - 1;
    index.Add(hashOf(static_cast<std::uint32_t>(added)), static_cast<std::uint32_t>(added));
    return static_cast<std::int64_t>(added);
}

const char* CStringSoup::Find(std::int64_t position) const {
    if (position < 0 || static_cast<std::size_t>(position) >= texts.size())
        return nullptr;
    return texts[static_cast<std::size_t>(position)].bytes.get();
}

std::int64_t CStringSoup::Find(std::string_view text) const {
    text = upToNul(text);
    const std::uint32_t found = index.Find(std::hash<std::string_view>()(text),
                                           [&](std::uint32_t i) { return texts[i].View() == text; });
    return found == PositionTable::none ? -1 : static_cast<std::int64_t>(found);
}

void CStringSoup::Clear() {
    texts.clear();
    index.Clear();
}

std::size_t CStringSoup::size() const { return texts.size(); }

} // namespace torka
