// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torka {

// Spreads an identifier over 64 bits (the finaliser of splitmix64).
inline std::uint64_t hashIdentifier(std::int64_t identifier) {
    auto x = std::bit_cast<std::uint64_t>(identifier) + 0x9e3779b97f4a7c15U;
    x = (x ^ (x >> 30U)) * 0xbf58476d1ce4e5b9U;
    x = (x ^ (x >> 27U)) * 0x94d049bb133111ebU;
    return x ^ (x >> 31U);
}

// An open-addressing index from hashes to positions in an array. The caller owns the array and compares with
// it.
//
// Nothing is removed. When its array shrinks, a caller rejects stale positions in its comparison, and calls
// Reset when Full() returns true. A caller whose array only grows calls Grow instead.
class PositionTable {
public:
    static constexpr std::uint32_t none = 0xffffffffU;

    // Returns the first position of this hash that matches(position) accepts, or none.
    template <typename Matches>
    std::uint32_t Find(std::uint64_t hash, Matches matches) const {
        if (slots.empty()) {
            return none;
        }
        const auto tag = tagOf(hash);
        const Slot* const first = slots.data(); // not checked again for each slot
        const std::size_t last = mask();
        for (std::size_t i = hash & last;; i = (i + 1) & last) {
            const Slot slot = first[i];
            if (slot.position == none) {
                return none;
            }
            if (slot.tag == tag && matches(slot.position)) {
                return slot.position;
            }
        }
    }

    bool Full() const { return (used + 1) * 4 > slots.size() * 3; }

    // Removes everything and makes room for that many positions.
    void Reset(std::size_t expected) {
        slots.assign(std::bit_ceil(expected * 4 / 3 + 8), Slot{});
        used = 0;
    }

    // REQUIRES: !Full().
    void Add(std::uint64_t hash, std::uint32_t position) {
        std::size_t i = hash & mask();
        while (slots[i].position != none) {
            i = (i + 1) & mask();
        }
        slots[i] = {tagOf(hash), position};
        ++used;
    }

    // Doubles the capacity. hashOf(position) must return the hash of each stored position.
    template <typename HashOf>
    void Grow(HashOf hashOf) {
        const std::vector<Slot> old = std::move(slots);
        Reset(old.size());
        for (const Slot& slot : old) {
            if (slot.position != none) {
                Add(hashOf(slot.position), slot.position);
            }
        }
    }

    void Clear() {
        slots = {};
        used = 0;
    }

private:
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t position = none;
    };

    static std::uint32_t tagOf(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32U); }
    std::size_t mask() const { return slots.size() - 1; }

    std::vector<Slot> slots;
    std::size_t used = 0;
};

} // namespace torka
