#pragma once

#include "PPDX/KVEngine/PositionTable.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torka {

// Values by identifier, kept side by side in the order of their insertion; only clear removes any. References
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

    // The value of the identifier, made of these arguments when there is none.
    template <typename... Arguments>
    Value& FindOrMake(std::int64_t id, Arguments&&... arguments) {
        if (const std::size_t position = PositionOf(id); position < ids.size())
            return values[position];
        ids.push_back(id);
        values.emplace_back(std::forward<Arguments>(arguments)...);
        if (ids.size() > scanned)
            Index();
        return values.back();
    }

    const std::vector<std::int64_t>& Ids() const { return ids; }
    std::vector<Value>& Values() { return values; }
    const std::vector<Value>& Values() const { return values; }

    void clear() { *this = {}; }

private:
    static constexpr std::size_t scanned = 8; // scanning is faster than hashing up to here

    std::size_t PositionOf(std::int64_t id) const {
        if (ids.size() > scanned) {
            const std::uint32_t position =
                table.Find(hashIdentifier(id), [&](std::uint32_t i) { return ids[i] == id; });
            return position == PositionTable::none ? ids.size() : position;
        }
        std::size_t i = 0;
        while (i < ids.size() && ids[i] != id)
            ++i;
        return i;
    }

    // Takes in the newest identifier, or all of them when the table is full or was not needed yet.
    void Index() {
        std::size_t next = ids.size() - 1;
        if (table.Full()) {
            table.Reset(ids.size() * 2);
            next = 0;
        }
        for (; next < ids.size(); ++next)
            table.Add(hashIdentifier(ids[next]), static_cast<std::uint32_t>(next));
    }

    std::vector<std::int64_t> ids;
    std::vector<Value> values;
    PositionTable table;
};

} // namespace torka
