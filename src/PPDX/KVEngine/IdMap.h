// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/PositionTable.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torka {

// Stores values by identifier, side by side in the order of insertion. Only clear removes values. References
// are valid until the next insertion.
template <typename Value>
class IdMap {
public:
    Value* Find(std::int64_t id) {
        const std::size_t position = PositionOf(id);
        return position == ids.size() ? nullptr : &values[position];
    }
    const Value* Find(std::int64_t id) const {
        const std::size_t position = PositionOf(id);
        return position == ids.size() ? nullptr : &values[position];
    }

    // Returns the value of the identifier. Constructs it from these arguments when there is none.
    template <typename... Arguments>
    Value& FindOrMake(std::int64_t id, Arguments&&... arguments) {
        if (const std::size_t position = PositionOf(id); position < ids.size()) {
            return values[position];
        }
        ids.push_back(id);
        values.emplace_back(std::forward<Arguments>(arguments)...);
        if (ids.size() > scanned) {
            Index();
        }
        return values.back();
    }

    const std::vector<std::int64_t>& Ids() const { return ids; }
    std::vector<Value>& Values() { return values; }
    const std::vector<Value>& Values() const { return values; }

    void clear() { *this = {}; }

private:
    static constexpr std::size_t scanned = 8; // up to here, scanning is faster than hashing

    std::size_t PositionOf(std::int64_t id) const {
        if (ids.size() > scanned) {
            const std::uint32_t position =
                table.Find(hashIdentifier(id), [&](std::uint32_t i) { return ids[i] == id; });
            return position == PositionTable::none ? ids.size() : position;
        }
        std::size_t i = 0;
        while (i < ids.size() && ids[i] != id) {
            ++i;
        }
        return i;
    }

    // Adds the newest identifier to the table, or all of them when the table is full or not yet in use.
    void Index() {
        std::size_t next = ids.size() - 1;
        if (table.Full()) {
            table.Reset(ids.size() * 2);
            next = 0;
        }
        for (; next < ids.size(); ++next) {
            table.Add(hashIdentifier(ids[next]), static_cast<std::uint32_t>(next));
        }
    }

    std::vector<std::int64_t> ids;
    std::vector<Value> values;
    PositionTable table;
};

} // namespace torka
