// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/PositionTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace torka {

// A key and one of its options, both identifiers of the store's string table. -1 means "not found" or "any".
struct KeyOption {
    std::int64_t key = -1;
    std::int64_t option = -1;

    bool operator==(const KeyOption&) const = default;
};

// Orders descending by key, then by option.
bool KeyOptionGreater(const KeyOption& a, const KeyOption& b);

// An ordered sequence of key/option pairs: the selections of a description, a proposed change, or an answer.
//
// Insert keeps each key once. add and + append without a check, so keys may then repeat. Look-ups scan a
// short cache and index a long one by hash. Not thread-safe, not even for look-ups.
class KVCache {
public:
    KVCache() = default;
    virtual ~KVCache() = default;
    KVCache(const KVCache& other);
    KVCache& operator=(const KVCache& other);
    KVCache(KVCache&& other) noexcept;
    KVCache& operator=(KVCache&& other) noexcept;

    // Replaces the option of the key's first entry, or appends. A negative key is ignored.
    void Insert(std::int64_t key, std::int64_t option);
    // Appends without any check.
    void add(const KeyOption& pair);
    // Inserts each pair of other.
    void merge(const KVCache& other);

    // Returns the position of the first entry equal in key and option, or -1.
    std::int64_t Lookup(const KeyOption& pair) const;
    // Returns the option of the first entry with that key, or -1.
    std::int64_t GetItem(std::int64_t key) const;
    // Returns the first entry with that key, or null; valid until the next change.
    const KeyOption* FindKey(std::int64_t key) const;
    // Returns the pair at position i; (-1, -1) beyond the end.
    KeyOption GetKV(std::size_t i) const;
    std::span<const KeyOption> Pairs() const { return std::span(entries).subspan(head); }

    // Remove and return the pair at that end; (0, 0) when empty.
    KeyOption pop_front();

    std::size_t size() const { return entries.size() - head; }
    void clear();

    // Tells whether a key is in more than one entry. May still return true after such entries were popped.
    bool HasRepeatedKeys() const;

    // Equal when both hold the same pairs equally often, in any order.
    bool operator==(const KVCache& other) const;

    // Given interface; no caller here
    // Append other's pairs whose key is not negative.
    KVCache operator+(const KVCache& other) const;
    KVCache& operator+=(const KVCache& other);
    KeyOption pop_back();

private:
    std::size_t PositionOf(std::int64_t key) const;
    bool UseIndex() const;
    void BuildIndex() const;
    void Append(const KeyOption& pair);
    std::uint32_t IndexedKey(std::int64_t key) const;
    std::uint32_t IndexedPair(const KeyOption& pair) const;
    bool IsLive(std::uint32_t position) const { return position >= head && position < entries.size(); }
    std::uint64_t Fingerprint() const;
    void DropIndex() const { index.built = false; }

    std::vector<KeyOption> entries;
    std::size_t head = 0; // entries before it were popped

    // byKey holds the first position of each key. byPair holds that of each pair, only while keys repeat.
    struct Index {
        PositionTable byKey;
        PositionTable byPair;
        unsigned scans = 0; // look-ups without an index since it was dropped
        bool built = false;
        bool repeats = false; // valid while built
    };
    mutable Index index;
    mutable bool unchecked = false; // an entry was appended without a check of its key

    // Sum of the pairs' hashes, thus equal for equal pairs in any order. Computed on the first request and
    // kept.
    mutable std::uint64_t fingerprint = 0;
    mutable bool hasFingerprint = false;
};

} // namespace torka
