// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/IdMap.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace torka {

class KVCache;

// The options of one key in recorded order, duplicates included. Never shrinks.
class KeyOptions {
public:
    void Append(std::span<const std::int64_t> options) {
        items.insert(items.end(), options.begin(), options.end());
    }
    const std::vector<std::int64_t>& Items() const { return items; }

    // Returns how often the option occurs among the first `limit` ones.
    std::size_t Occurrences(std::int64_t option, std::size_t limit) const;

private:
    void SortNewItems() const;

    std::vector<std::int64_t> items;
    mutable std::vector<std::uint32_t> sorted; // positions by (option, position); may lag behind items
};

// An ordered list of the options that each key offers, in the order in which the description gave them.
//
// Owns its arrays. Shares them with the wildcard constraints resolved against them.
class KeyForest {
public:
    KeyForest() = default;
    virtual ~KeyForest() = default;
    KeyForest(const KeyForest&) = delete;
    KeyForest& operator=(const KeyForest&) = delete;

    // Adds nothing, not even the key, without options.
    void insert(std::int64_t key, std::span<const std::int64_t> options);
    // Returns the key's options, or null when the key was never inserted.
    const std::vector<std::int64_t>* GetItems(std::int64_t key) const;
    std::shared_ptr<const KeyOptions> GetOptions(std::int64_t key) const;

    // Given interface; no caller here
    // Fills `out` with every option of every key, keys ascending. Creates `out` when null, else empties it
    // first.
    void GetKeys(std::unique_ptr<KVCache>& out) const;
    void clear() { keys.clear(); }

private:
    IdMap<std::shared_ptr<KeyOptions>> keys;
};

} // namespace torka
