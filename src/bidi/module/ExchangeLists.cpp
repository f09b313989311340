// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/ExchangeLists.h"

#include "bidi/module/JobPropertiesState.h"
#include "bidi/serverdata/ByteOrderMark.h"
#include "bidi/text/FieldText.h"
#include "bidi/text/StandardStreams.h"
#include "platform/FreshMemory.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <cwchar>
#include <limits>
#include <optional>
#include <unordered_map>

namespace torka {

namespace {

// The module's text; "" for null.
const wchar_t* orEmpty(const wchar_t* text) { return text ? text : L""; }

// Reads a wide text only as far as it fits the field, because the module's text may lack its terminator.
void writeText(std::span<char> field, const wchar_t* text, bool lettersForMarks) {
    FieldWriter writer(field);
    text = orEmpty(text);
    for (const wchar_t* unit = text + writer.AppendAscii(text); *unit != L'\0' && !writer.IsFull(); ++unit) {
        if (lettersForMarks && *unit == wideMark.front()) {
            writer.Append(markLetters);
        } else {
            writer.Append(static_cast<char32_t>(*unit));
        }
    }
    writer.Finish();
}

// Accepts the keyword with and without its asterisk.
bool isPresetName(std::string_view key) {
    if (key.starts_with('*')) {
        key.remove_prefix(1);
    }
    return key == "PresetName";
}

// Whether two fields hold the same text.
template <std::size_t size>
bool sameField(const std::array<char, size>& one, const std::array<char, size>& other) {
    return std::strncmp(one.data(), other.data(), size) == 0;
}

// The first place of each key in the record.
std::unordered_map<std::string_view, std::size_t> firstPlaces(const SharedMemoryList& record) {
    std::unordered_map<std::string_view, std::size_t> places;
    const std::size_t count = entryCount(record);
    places.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        places.emplace(entryKey(record, i), i);
    }
    return places;
}

// Whether a value of the record differs from what the module returned under the same key. A key may occur
// more than once: an entry is compared with the one in the same place first. Few entries need the places of
// all keys.
bool differsFromModule(const SharedMemoryList& record, const SharedMemoryList& fromModule) {
    std::optional<std::unordered_map<std::string_view, std::size_t>> places;
    const std::size_t returned = entryCount(fromModule);
    const std::size_t count = entryCount(record);
    for (std::size_t i = 0; i < count; ++i) {
        if (i < returned && sameField(record.keys[i], fromModule.keys[i]) &&
            sameField(record.values[i], fromModule.values[i])) {
            continue;
        }
        if (!places) {
            places = firstPlaces(fromModule);
        }
        const auto found = places->find(entryKey(record, i));
        if (found != places->end() && entryValue(record, i) != entryValue(fromModule, found->second)) {
            return true;
        }
    }
    return false;
}

// Copies the record without the unused places for entries, which nobody reads.
void keep(const SharedMemoryList& record) {
    if (!sharedListCopyFromJP) {
        sharedListCopyFromJP = newSharedMemoryList();
    }
    SharedMemoryList& copy = *sharedListCopyFromJP;
    const auto count = static_cast<std::ptrdiff_t>(entryCount(record));
    std::copy(record.keys.begin(), record.keys.begin() + count, copy.keys.begin());
    std::copy(record.values.begin(), record.values.begin() + count, copy.values.begin());
    constexpr std::size_t entriesEnd = offsetof(SharedMemoryList, count);
    std::memcpy(reinterpret_cast<char*>(&copy) + entriesEnd,
                reinterpret_cast<const char*>(&record) + entriesEnd, sizeof copy - entriesEnd);
}

} // namespace

// KeyValueList

wchar_t* KeyValueList::Room(std::size_t units) {
    if (units > left) {
        constexpr std::size_t blockUnits = 16384;
        left = std::max(units, blockUnits);
        blocks.push_back(platform::makeSecretArray<wchar_t>(left));
        next = blocks.back().get();
    }
    wchar_t* room = next;
    next += units;
    left -= units;
    return room;
}

void KeyValueList::Reserve(std::size_t count, std::size_t characters) {
    entries.reserve(entries.size() + count);
    const std::size_t units = characters + 2 * count;
    if (units > left) {
        left = units;
        blocks.push_back(platform::makeSecretArray<wchar_t>(left));
        next = blocks.back().get();
    }
}

void KeyValueList::Append(std::wstring_view key, std::wstring_view value) {
    const auto copy = [this](std::wstring_view text) {
        text = text.substr(0, text.find(L'\0'));
        wchar_t* room = Room(text.size() + 1);
        *std::copy(text.begin(), text.end(), room) = L'\0';
        return room;
    };
    wchar_t* keyText = copy(key);
    entries.push_back({keyText, copy(value)});
}

void KeyValueList::AppendNarrow(std::string_view key, std::string_view value) {
    const auto widen = [this](std::string_view text) {
        text = text.substr(0, text.find('\0'));
        wchar_t* room = Room(text.size() + 1);
        room[widenInto({room, text.size()}, text)] = L'\0';
        return room;
    };
    wchar_t* keyText = widen(key);
    entries.push_back({keyText, widen(value)});
}

void KeyValueList::SetValue(std::size_t index, std::wstring_view value) {
    value = value.substr(0, value.find(L'\0'));
    wchar_t* room = Room(value.size() + 1);
    *std::copy(value.begin(), value.end(), room) = L'\0';
    platform::wipe(entries[index].szValue, std::wcslen(entries[index].szValue) * sizeof(wchar_t));
    entries[index].szValue = room;
}

void KeyValueList::Clear() {
    entries.clear();
    blocks.clear();
    next = nullptr;
    left = 0;
}

const SDMKeyValueList& KeyValueList::List() {
    list = {entries.size(), entries.data()};
    return list;
}

// WatermarkDefinitions

void WatermarkDefinitions::Append(std::wstring_view definition) {
    definition = definition.substr(0, definition.find(L'\0'));
    auto copy = std::make_unique_for_overwrite<wchar_t[]>(definition.size() + 1);
    *std::copy(definition.begin(), definition.end(), copy.get()) = L'\0';
    pointers.push_back(copy.get());
    texts.push_back(std::move(copy));
}

const JPWatermarkList& WatermarkDefinitions::List() {
    list = {pointers.size(), pointers.data()};
    return list;
}

// Settings

void writeSettings(SharedMemoryList& record, const SDMKeyValueList& list) {
    const std::size_t count = list.items ? std::min(list.count, exchangeEntryLimit) : 0;
    setFieldNumber(record.count, static_cast<long>(count));
    platform::takePages(record.keys.data(), count * exchangeKeySize);
    platform::takePages(record.values.data(), count * exchangeValueSize);
    for (std::size_t i = 0; i < count; ++i) {
        const SDMKeyValue& entry = list.items[i];
        writeText(record.values[i], entry.szValue, *orEmpty(entry.szValue) == wideMark.front());
        writeText(record.keys[i], entry.szKey, false);
    }
}

void Create_SharedMemoryList_From_SDMList(SharedMemoryList& record, const SDMKeyValueList& list) {
    writeSettings(record, list);
    const std::size_t count = entryCount(record);
    for (std::size_t i = 0; i < count && !gotServerPresetFromJP; ++i) {
        gotServerPresetFromJP = isPresetName(entryKey(record, i)) && !entryValue(record, i).empty();
    }
    if (fieldNumber(record.extraPending) != 0) {
        setField(record.extraPending, "0");
        setField(record.extraCount, "0");
    }
    keep(record);
    gotSharedListFromJP = true;
}

void Create_SDMList_From_SharedMemoryList(KeyValueList& out, const SharedMemoryList& record) {
    out.Clear();
    const std::size_t count = entryCount(record);
    const auto extra =
        static_cast<std::size_t>(std::clamp<long>(fieldNumber(record.extraCount), 0, exchangeEntryLimit));
    constexpr std::size_t usualCharacters = 32; // more take another block
    out.Reserve(count + extra, count * usualCharacters);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string_view value = entryValue(record, i);
        if (value.starts_with(markLetters)) {
            out.AppendNarrow(entryKey(record, i), withMarks(value));
        } else {
            out.AppendNarrow(entryKey(record, i), value);
        }
    }
    for (std::size_t i = 0; i < extra; ++i) {
        out.Append({}, {});
    }
    if (gotSharedListFromJP && gotServerPresetFromJP && sharedListCopyFromJP &&
        differsFromModule(record, *sharedListCopyFromJP)) {
        for (std::size_t i = 0; i < count; ++i) {
            if (isPresetName(entryKey(record, i))) {
                out.SetValue(i, {});
            }
        }
    }
    gotSharedListFromJP = false;
}

// Watermarks

void GetWatermarkList_From_CombinedList(WatermarkDefinitions& out, std::string_view combined,
                                        std::size_t count) {
    for (; count > 0 && !combined.empty(); --count) {
        const std::size_t length = std::min(combined.find('\0'), combined.size());
        out.Append(wideFromUtf8(combined.substr(0, length)));
        combined.remove_prefix(std::min(length + 1, combined.size()));
    }
}

void Create_SDMWatermarkList_From_SharedMemoryList(WatermarkDefinitions& out,
                                                   const SharedMemoryList& record) {
    const long count = std::max<long>(fieldNumber(record.watermarkCount), 0);
    GetWatermarkList_From_CombinedList(out, {record.watermarks.data(), record.watermarks.size()},
                                       static_cast<std::size_t>(count));
}

std::size_t Create_SharedMemoryWatermarkList_From_SDMList(SharedMemoryList& record,
                                                          const JPWatermarkList& list) {
    std::vector<std::string> definitions;
    // Each definition takes at least one byte, its terminator. More definitions than bytes cannot fit.
    const std::size_t count = list.definitions ? std::min(list.count, record.watermarks.size()) : 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (list.definitions[i]) {
            definitions.push_back(utf8FromWide(list.definitions[i]));
        }
    }
    return setWatermarkDefinitions(record, definitions);
}

void PrintSDMKeyValueList(const SDMKeyValueList& list) {
    for (std::size_t i = 0; list.items && i < list.count; ++i) {
        const std::string number = std::to_string(i);
        standardStreams().Error("PrintSDMKeyValueList szKey" + number + " =" +
                                utf8FromWide(orEmpty(list.items[i].szKey)) + "\n");
        standardStreams().Error("PrintSDMKeyValueList szValue" + number + " =" +
                                utf8FromWide(orEmpty(list.items[i].szValue)) + "\n");
    }
}

} // namespace torka
