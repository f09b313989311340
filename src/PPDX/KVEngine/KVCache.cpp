// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/KVCache.h"

#include <algorithm>
#include <utility>

namespace torka {

namespace {

constexpr std::size_t noPosition = ~std::size_t{0};
constexpr std::size_t shortCache = 16;   // up to here, scanning is faster than hashing
constexpr unsigned scansBeforeIndex = 4; // an index is worth its cost only for repeated look-ups
constexpr std::size_t poppedWorthFreeing = 1024;

std::uint64_t hashPair(const KeyOption& pair) {
    const std::uint64_t sum = std::bit_cast<std::uint64_t>(pair.option) + hashIdentifier(pair.key);
    return hashIdentifier(std::bit_cast<std::int64_t>(sum));
}

} // namespace

bool KeyOptionGreater(const KeyOption& a, const KeyOption& b) {
    return a.key > b.key || (a.key == b.key && a.option > b.option);
}

KVCache::KVCache(const KVCache& other)
    : entries(other.Pairs().begin(), other.Pairs().end())
    , unchecked(other.unchecked)
    , fingerprint(other.fingerprint)
    , hasFingerprint(other.hasFingerprint) {}

KVCache& KVCache::operator=(const KVCache& other) {
    if (this != &other) {
        *this = KVCache(other);
    }
    return *this;
}

KVCache::KVCache(KVCache&& other) noexcept { *this = std::move(other); }

KVCache& KVCache::operator=(KVCache&& other) noexcept {
    if (this != &other) {
        entries = std::exchange(other.entries, {});
        head = std::exchange(other.head, 0);
        index = std::exchange(other.index, {});
        unchecked = std::exchange(other.unchecked, false);
        fingerprint = other.fingerprint;
        hasFingerprint = std::exchange(other.hasFingerprint, false);
    }
    return *this;
}

void KVCache::Insert(std::int64_t key, std::int64_t option) {
    if (key < 0) {
        return;
    }
    const std::size_t position = PositionOf(key);
    if (position == noPosition) {
        Append({key, option});
        return;
    }
    KeyOption& entry = entries[position];
    if (hasFingerprint) {
        fingerprint += hashPair({key, option}) - hashPair(entry);
    }
    entry.option = option;
    if (index.repeats) {
        DropIndex();
    }
}

void KVCache::add(const KeyOption& pair) {
    unchecked = unchecked || size() > 0;
    Append(pair);
}

void KVCache::merge(const KVCache& other) {
    if (this == &other) {
        return;
    }
    for (const KeyOption& pair : other.Pairs()) {
        Insert(pair.key, pair.option);
    }
}

KVCache KVCache::operator+(const KVCache& other) const {
    KVCache sum = *this;
    sum += other;
    return sum;
}

KVCache& KVCache::operator+=(const KVCache& other) {
    const std::size_t count = other.size();
    for (std::size_t i = 0; i < count; ++i) {
        const KeyOption pair = other.GetKV(i);
        if (pair.key >= 0) {
            add(pair);
        }
    }
    return *this;
}

std::int64_t KVCache::Lookup(const KeyOption& pair) const {
    if (!UseIndex()) {
        const auto pairs = Pairs();
        const auto found = std::find(pairs.begin(), pairs.end(), pair);
        return found == pairs.end() ? -1 : found - pairs.begin();
    }
    const std::uint32_t position = index.repeats ? IndexedPair(pair) : IndexedKey(pair.key);
    if (position == PositionTable::none || entries[position].option != pair.option) {
        return -1;
    }
    return static_cast<std::int64_t>(position - head);
}

std::int64_t KVCache::GetItem(std::int64_t key) const {
    const KeyOption* entry = FindKey(key);
    return entry == nullptr ? -1 : entry->option;
}

const KeyOption* KVCache::FindKey(std::int64_t key) const {
    const std::size_t position = PositionOf(key);
    return position == noPosition ? nullptr : &entries[position];
}

KeyOption KVCache::GetKV(std::size_t i) const { return i < size() ? entries[head + i] : KeyOption{}; }

KeyOption KVCache::pop_front() {
    if (size() == 0) {
        return {0, 0};
    }
    const KeyOption pair = entries[head++];
    if (hasFingerprint) {
        fingerprint -= hashPair(pair);
    }
    if (index.repeats) {
        DropIndex(); // the next entry of that key becomes its first
    }
    if (head == entries.size()) {
        clear();
    } else if (head >= poppedWorthFreeing && head * 2 >= entries.size()) {
        entries.erase(entries.begin(), entries.begin() + static_cast<std::ptrdiff_t>(head));
        head = 0;
        DropIndex();
    }
    return pair;
}

KeyOption KVCache::pop_back() {
    if (size() == 0) {
        return {0, 0};
    }
    const KeyOption pair = entries.back();
    entries.pop_back();
    if (hasFingerprint) {
        fingerprint -= hashPair(pair);
    }
    return pair;
}

void KVCache::clear() {
    entries.clear();
    head = 0;
    hasFingerprint = false;
    index.scans = 0;
    index.built = index.repeats = unchecked = false;
}

bool KVCache::HasRepeatedKeys() const {
    if (!unchecked) {
        return false;
    }
    if (!index.built) {
        BuildIndex();
    }
    unchecked = index.repeats;
    return index.repeats;
}

bool KVCache::operator==(const KVCache& other) const {
    if (size() != other.size() || Fingerprint() != other.Fingerprint()) {
        return false;
    }
    const auto mine = Pairs();
    const auto theirs = other.Pairs();
    if (std::equal(mine.begin(), mine.end(), theirs.begin())) {
        return true;
    }
    std::vector<KeyOption> a(mine.begin(), mine.end());
    std::vector<KeyOption> b(theirs.begin(), theirs.end());
    std::sort(a.begin(), a.end(), KeyOptionGreater);
    std::sort(b.begin(), b.end(), KeyOptionGreater);
    return a == b;
}

std::uint64_t KVCache::Fingerprint() const {
    if (!hasFingerprint) {
        fingerprint = 0;
        for (const KeyOption& pair : Pairs()) {
            fingerprint += hashPair(pair);
        }
        hasFingerprint = true;
    }
    return fingerprint;
}

std::size_t KVCache::PositionOf(std::int64_t key) const {
    if (UseIndex()) {
        const std::uint32_t position = IndexedKey(key);
        return position == PositionTable::none ? noPosition : position;
    }
    for (std::size_t i = head; i < entries.size(); ++i) {
        if (entries[i].key == key) {
            return i;
        }
    }
    return noPosition;
}

bool KVCache::UseIndex() const {
    if (index.built) {
        return true;
    }
    if (size() <= shortCache || ++index.scans < scansBeforeIndex) {
        return false;
    }
    BuildIndex();
    return true;
}

void KVCache::BuildIndex() const {
    index.byKey.Reset(size() * 2);
    index.byPair.Clear();
    index.repeats = false;
    for (std::size_t i = head; i < entries.size(); ++i) {
        if (IndexedKey(entries[i].key) == PositionTable::none) {
            index.byKey.Add(hashIdentifier(entries[i].key), static_cast<std::uint32_t>(i));
        } else {
            index.repeats = true;
        }
    }
    if (index.repeats) {
        index.byPair.Reset(size() * 2);
        for (std::size_t i = head; i < entries.size(); ++i) {
            if (IndexedPair(entries[i]) == PositionTable::none) {
                index.byPair.Add(hashPair(entries[i]), static_cast<std::uint32_t>(i));
            }
        }
    }
    index.built = true;
    index.scans = 0;
}

void KVCache::Append(const KeyOption& pair) {
    if (index.built) {
        const bool known = IndexedKey(pair.key) != PositionTable::none;
        if ((known && !index.repeats) || index.byKey.Full() || (index.repeats && index.byPair.Full())) {
            DropIndex();
            index.scans = scansBeforeIndex; // rebuild at the next look-up, with twice the capacity
        } else {
            const auto position = static_cast<std::uint32_t>(entries.size());
            if (!known) {
                index.byKey.Add(hashIdentifier(pair.key), position);
            }
            if (index.repeats && IndexedPair(pair) == PositionTable::none) {
                index.byPair.Add(hashPair(pair), position);
            }
        }
    }
    entries.push_back(pair);
    if (hasFingerprint) {
        fingerprint += hashPair(pair);
    }
}

std::uint32_t KVCache::IndexedKey(std::int64_t key) const {
    return index.byKey.Find(hashIdentifier(key), [&](std::uint32_t position) {
        return IsLive(position) && entries[position].key == key;
    });
}

std::uint32_t KVCache::IndexedPair(const KeyOption& pair) const {
    return index.byPair.Find(hashPair(pair), [&](std::uint32_t position) {
        return IsLive(position) && entries[position] == pair;
    });
}

} // namespace torka
