// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The module's view of the print server: the answers of the pane's callbacks, copied into the module's own
// values.

namespace torka::jobproperties {

// A larger count is damaged.
inline constexpr std::size_t maximumListLength = 100000;

struct KeyValue {
    std::string key; // UTF-8
    std::string value;

    bool operator==(const KeyValue&) const = default;
};
using KeyValues = std::vector<KeyValue>;

// Texts are UTF-8, empty when unknown to the server. Numbers are those of the interface (-1 unknown, -2
// unlimited, -3 some).
struct Tray {
    std::string name, key, mediaName, mediaSize, mediaType, mediaColor;
    std::int32_t level = SDM_LEVEL_UNKNOWN; // sheets
    std::int32_t capacity = SDM_LEVEL_UNKNOWN;

    bool operator==(const Tray&) const = default;
};

struct Toner {
    std::string name;
    std::int32_t level = SDM_LEVEL_UNKNOWN; // percent; of a waste box the used part
    std::int32_t lowLevel = SDM_LEVEL_UNKNOWN;
    std::string color; // "#rrggbb", one or more without a separator
    std::int32_t highLevel = SDM_LEVEL_UNKNOWN;
    std::int32_t capacity = SDM_LEVEL_UNKNOWN;
    std::int32_t kind = SDM_SUPPLY_OTHER;

    bool operator==(const Toner&) const = default;
};

struct Preset {
    KeyValues jobValues, tesselValues, presetValues;
};

// `value` is set only when the callback exists and succeeded.
template <typename Value>
struct Answer {
    bool offered = false;
    SDMRESULT result = SDM_NOT_AVAILABLE;
    Value value{};

    explicit operator bool() const { return offered && result == SDM_SUCCESS; }
};

// Copies a received list. Returns false, with nothing copied, when there is no list or its count is
// implausible. Skips an entry without a key.
bool readList(const SDMKeyValueList* list, KeyValues& values);

// Calls the callback table on the thread that created it. Returns every block of a callback through the
// table's free callback, whatever it holds.
class Server {
public:
    // Copies the table. Passes `handle` to each callback.
    Server(const SDMCallbackSlot* table, SDMHANDLE handle);

    bool IsTwoWay() const;

    Answer<std::string> Data() const; // XML text
    Answer<std::vector<Tray>> Trays() const;
    Answer<std::vector<Toner>> Toners() const;
    Answer<std::vector<std::string>> PresetNames() const;
    Answer<Preset> PresetByName(const std::string& name) const;
    Answer<KeyValues> Information() const;
    Answer<KeyValues> Features() const;
    Answer<KeyValues> Help() const; // setting and help text
    Answer<KeyValues> Defaults() const;
    Answer<KeyValues> LockedKeys() const;
    Answer<std::string> Version(enumVersionInfo kind) const;

private:
    template <typename Proc>
    Proc Slot(int slot) const {
        return reinterpret_cast<Proc>(slots[static_cast<std::size_t>(slot)].function);
    }
    Answer<KeyValues> List(int slot) const;
    std::string TakeText(wchar_t* text) const;
    KeyValues TakeList(SDMKeyValueList* list) const;
    void Free(void* block) const;

    std::array<SDMCallbackSlot, SDM_CALLBACK_SLOTS> slots{};
    SDMHANDLE handle;
};

// Returns the value of an attribute (`name="value"`) in an XML text, with entities resolved; empty when there
// is none.
std::string attributeOf(const std::string& xml, const std::string& name);

} // namespace torka::jobproperties
