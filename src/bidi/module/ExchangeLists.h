// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"
#include "bidi/memory/SharedMemoryList.h"
#include "platform/SecretMemory.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace torka {

// Settings in the module's form. Owns the texts. Texts may be secret: SetValue, Clear and the destructor wipe
// them. List() stays valid until the next change.
class KeyValueList {
public:
    KeyValueList() = default;
    KeyValueList(KeyValueList&&) noexcept = default;
    KeyValueList& operator=(KeyValueList&&) noexcept = default;

    // Reserves room for this number of entries and of characters in their keys and values.
    void Reserve(std::size_t entries, std::size_t characters);
    void Append(std::wstring_view key, std::wstring_view value);
    // Takes UTF-8. Invalid bytes become U+FFFD.
    void AppendNarrow(std::string_view key, std::string_view value);
    void SetValue(std::size_t index, std::wstring_view value);
    void Clear();
    std::size_t Count() const { return entries.size(); }
    // REQUIRES: index < Count().
    std::wstring_view Key(std::size_t index) const { return entries[index].szKey; }
    std::wstring_view Value(std::size_t index) const { return entries[index].szValue; }
    const SDMKeyValueList& List();

private:
    wchar_t* Room(std::size_t units);

    std::vector<SDMKeyValue> entries;
    std::vector<platform::SecretArray<wchar_t>> blocks;
    wchar_t* next = nullptr;
    std::size_t left = 0;
    SDMKeyValueList list{};
};

// Watermark definitions in the module's form. Owns the texts.
class WatermarkDefinitions {
public:
    void Append(std::wstring_view definition);
    const JPWatermarkList& List();

    // For the tests; no caller here
    std::size_t Count() const { return texts.size(); }

private:
    std::vector<std::unique_ptr<wchar_t[]>> texts;
    std::vector<wchar_t*> pointers;
    JPWatermarkList list{};
};

// Writes the settings that the module returned into the record.
//
// Takes at most 3,000 entries. A key has up to 64 bytes and a value up to 700; a longer text is cut at a
// character's end, and a text that fills its field has no terminator. In a value that begins with a
// byte-order mark, each mark becomes "EFBBBF". An entry with a null key counts, with an empty key. An entry
// "PresetName" with a value sets gotServerPresetFromJP. When extraPending is not 0, it and extraCount become
// "0". Copies the record to sharedListCopyFromJP and sets gotSharedListFromJP.
void Create_SharedMemoryList_From_SDMList(SharedMemoryList& record, const SDMKeyValueList& list);
// Writes the pane's own settings into the record. Same limits and byte-order marks; changes only the entries
// and their count.
void writeSettings(SharedMemoryList& record, const SDMKeyValueList& list);

// Reads the record's settings into a list of count + extraCount entries. Those beyond `count` have empty
// texts. In a value that begins with "EFBBBF", each "EFBBBF" becomes a byte-order mark. "PresetName" becomes
// empty when the module returned a preset of the server and a value has changed since: the settings are then
// no longer those of the preset. Clears gotSharedListFromJP.
void Create_SDMList_From_SharedMemoryList(KeyValueList& out, const SharedMemoryList& record);

// Reads at most `count` definitions from the record's combined list.
void GetWatermarkList_From_CombinedList(WatermarkDefinitions& out, std::string_view combined,
                                        std::size_t count);
void Create_SDMWatermarkList_From_SharedMemoryList(WatermarkDefinitions& out, const SharedMemoryList& record);
// Returns the number of definitions written, see setWatermarkDefinitions. Leaves out null texts.
std::size_t Create_SharedMemoryWatermarkList_From_SDMList(SharedMemoryList& record,
                                                          const JPWatermarkList& list);

// Writes a list's entries to the standard error stream.
void PrintSDMKeyValueList(const SDMKeyValueList& list);

} // namespace torka
