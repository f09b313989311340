// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/EmissionSource.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

// The list to which a setting without a control belongs, by the prefix of its key without asterisk.
enum class KeyKind { mixedMedia, padCover, slipSheet, coverPage, account, other };
KeyKind keyKind(std::wstring_view key);
// The form in which the lists keep a key, given with or without its asterisk: mixed media have one, the
// others have none.
std::wstring settledKey(std::wstring_view key);

// An ordered list of settings with a fixed capacity. The count says how many slots are in use. A slot that
// was never filled holds empty texts. A slot that falls out of use keeps its texts until it is filled again.
class SettingList {
public:
    SettingList(const char* listName, std::size_t slotCapacity)
        : name(listName)
        , capacity(slotCapacity) {}

    std::size_t Count() const { return count; }
    std::size_t Capacity() const { return capacity; }
    std::span<const WideSetting> Entries() const { return {slots.data(), count}; }

    // Values outside 0 to the capacity are clamped.
    void SetCount(std::int64_t newCount);
    // Returns false and logs the setting when the list is full.
    bool Append(WideSetting setting) { return FillSlot(count, std::move(setting)); }
    // Fills the slot `index` and increases the count by one, whatever the count was: the two may differ.
    // Returns false and logs the setting when either would exceed the capacity.
    bool FillSlot(std::size_t index, WideSetting setting);
    // REQUIRES: index < Count()
    WideSetting& At(std::size_t index) { return slots[index]; }
    // Also clears the texts.
    void Clear();

private:
    const char* name;
    std::size_t capacity;
    std::size_t count = 0;
    std::vector<WideSetting> slots; // at least `count`
};

} // namespace torka
