#pragma once

#include "output/EmissionSource.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace torka {

// An ordered list of settings with a fixed capacity. The count says how many slots are in use; a slot below
// the count that was never filled holds empty texts.
class SettingList {
public:
    SettingList(const char* listName, std::size_t slotCapacity)
        : name(listName)
        , capacity(slotCapacity) {}

    std::size_t Count() const { return slots.size(); }
    std::size_t Capacity() const { return capacity; }
    std::span<const WideSetting> Entries() const { return slots; }

    // Held to 0 and the capacity; slots beyond the new count are forgotten.
    void SetCount(std::int64_t count);
    // False, with a line in the log, past the capacity.
    bool Append(WideSetting setting);
    // Fills a slot whatever the count, which grows by one with each call (slots are then filled from 0 while
    // the count goes on from where it stood). False, with a line in the log, when either would pass the
    // capacity.
    bool FillSlot(std::size_t index, WideSetting setting);
    // REQUIRES: index < Count()
    WideSetting& At(std::size_t index) { return slots[index]; }
    void Clear() { slots.clear(); }

private:
    void Refuse() const;

    const char* name;
    std::size_t capacity;
    std::vector<WideSetting> slots;
};

} // namespace torka
