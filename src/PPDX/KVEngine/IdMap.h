// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torka {

// Stores values by identifier, side by side in the order of insertion. Only clear removes values. References
// are valid until the next insertion.
//
// Identifiers are indexes of a string table, so an array of 4 bytes for each finds a value without hashing.
template <typename Value>
class IdMap {
public:
    Value* Find(std::int64_t id) {
        const std::uint32_t place = PlaceOf(id);
        return place == none ? nullptr : &values[place];
    }
    const Value* Find(std::int64_t id) const {
        const std::uint32_t place = PlaceOf(id);
        return place == none ? nullptr : &values[place];
    }

    // Returns the value of the identifier. Constructs it from these arguments when there is none.
    // REQUIRES: id >= 0.
    template <typename... Arguments>
    Value& FindOrMake(std::int64_t id, Arguments&&... arguments) {
        if (const std::uint32_t place = PlaceOf(id); place != none) {
            return values[place];
        }
        const auto index = static_cast<std::size_t>(id);
        if (index >= places.size()) {
            places.resize(index + 1, none);
        }
        values.emplace_back(std::forward<Arguments>(arguments)...);
        ids.push_back(id);
        places[index] = static_cast<std::uint32_t>(values.size() - 1);
        return values.back();
    }

    const std::vector<std::int64_t>& Ids() const { return ids; }
    std::vector<Value>& Values() { return values; }
    const std::vector<Value>& Values() const { return values; }

    void clear() { *this = {}; }

private:
    static constexpr std::uint32_t none = 0xffffffffU;

    std::uint32_t PlaceOf(std::int64_t id) const {
        const auto index = static_cast<std::size_t>(id); // beyond any place for a negative one
        return index < places.size() ? places[index] : none;
    }

    std::vector<std::int64_t> ids;
    std::vector<Value> values;
    std::vector<std::uint32_t> places; // in `values`, by identifier
};

} // namespace torka
