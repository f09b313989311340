// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace torka {

// The pairs that one option of a key constrains, in insertion order, duplicates included.
class ItemConstraintList {
public:
    explicit ItemConstraintList(std::int64_t ownerOption = -1)
        : owner(ownerOption) {}
    virtual ~ItemConstraintList() = default;
    ItemConstraintList(const ItemConstraintList&) = default;
    ItemConstraintList& operator=(const ItemConstraintList&) = default;
    ItemConstraintList(ItemConstraintList&&) noexcept = default;
    ItemConstraintList& operator=(ItemConstraintList&&) noexcept = default;

    void insert(const KeyOption& pair) { pairs.push_back(pair); }

    std::size_t size() const { return pairs.size(); }

    // Given interface; no caller here
    void insert(std::int64_t key, std::int64_t option) { pairs.push_back({key, option}); }
    ItemConstraintList operator+(const ItemConstraintList& other) const;
    ItemConstraintList& operator+=(const ItemConstraintList& other);
    // Returns a copy of pair i; null when there is none.
    std::unique_ptr<KeyOption> operator[](std::int64_t i) const;
    void Replace(std::vector<KeyOption> kept) { pairs = std::move(kept); }

    // For the tests; no caller here
    const std::vector<KeyOption>& Pairs() const { return pairs; }
    std::int64_t Owner() const { return owner; }

private:
    std::int64_t owner;
    std::vector<KeyOption> pairs;
};

} // namespace torka
