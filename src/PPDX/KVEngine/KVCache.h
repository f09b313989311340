#pragma once

#include "PPDX/KVEngine/PositionTable.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace torka {

// A key and one of its options, both identifiers of the store's string table; -1 is "not found" or "any".
struct KeyOption {
    std::int64_t key = -1;
    std::int64_t option = -1;

    bool operator==(const KeyOption&) const = default;
};

// Descending by key, then by option.
bool KeyOptionGreater(const KeyOption& a, const KeyOption& b);

// An ordered sequence of key/option pairs: the selections of a description, a proposed change, or an answer.
//
// A cache filled by Insert holds each key once; add and + append without a look, so keys may repeat there.
// Look-ups scan a short cache and index a long one by hash. Not thread-safe, look-ups included.
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
    // Append other's pairs whose key is not negative.
    KVCache operator+(const KVCache& other) const;
    KVCache& operator+=(const KVCache& other);

    // Position of the first entry equal in key and option, or -1.
    std::int64_t Lookup(const KeyOption& pair) const;
    // Option of the first entry with that key, or -1.
    std::int64_t GetItem(std::int64_t key) const;
    // The first entry with that key, or null; valid until the next change.
    const KeyOption* FindKey(std::int64_t key) const;
    // The pair at position i; (-1, -1) beyond the end.
    KeyOption GetKV(std::size_t i) const;
    std::span<const KeyOption> Pairs() const { return std::span(entries).subspan(head); }

    // Remove and return the pair at that end; (0, 0) when empty.
    KeyOption pop_front();
    KeyOption pop_back();

    std::size_t size() const { return entries.size() - head; }
    void clear();

    // Whether a key stands in more than one entry. May answer true after such entries were popped.
    bool HasRepeatedKeys() const;

    // Equal when both hold the same pairs equally often, in whatever order.
    bool operator==(const KVCache& other) const;

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

    // byKey holds the first position of each key; byPair, only kept while keys repeat, that of each pair.
    struct Index {
        PositionTable byKey;
        PositionTable byPair;
        unsigned scans = 0; // look-ups done without an index since it was dropped
        bool built = false;
        bool repeats = false; // known while built
    };
    mutable Index index;
    mutable bool unchecked = false; // something was appended without a look at its key

    // Sum of the pairs' hashes, so the same for the same pairs in any order; kept once it was asked for.
    mutable std::uint64_t fingerprint = 0;
    mutable bool hasFingerprint = false;
};

} // namespace torka
