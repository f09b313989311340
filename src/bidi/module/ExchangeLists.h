#pragma once

#include "bidi/JobPropertiesModule.h"
#include "bidi/memory/SharedMemoryList.h"
#include "platform/SecretMemory.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace torka {

// Settings in the form in which they are handed to the module. Owns the texts, which may be secret and are
// wiped when they are replaced and at the end; List() stays valid until the next change.
class KeyValueList {
public:
    KeyValueList() = default;
    KeyValueList(KeyValueList&&) noexcept = default;
    KeyValueList& operator=(KeyValueList&&) noexcept = default;

    // Room for this many entries and for this many characters of their keys and values.
    void Reserve(std::size_t entries, std::size_t characters);
    void Append(std::wstring_view key, std::wstring_view value);
    // UTF-8; bytes that are not become U+FFFD.
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

// Watermark definitions in the form in which they are handed to the module; owns the texts.
class WatermarkDefinitions {
public:
    void Append(std::wstring_view definition);
    const JPWatermarkList& List();
    std::size_t Count() const { return texts.size(); }

private:
    std::vector<std::unique_ptr<wchar_t[]>> texts;
    std::vector<wchar_t*> pointers;
    JPWatermarkList list{};
};

// The settings of a list into the record: at most 3,000 entries, each key in 64 bytes and each value in 700,
// cut at a character's end and then without terminator. A value that begins with a byte-order mark has each
// of its marks written as "EFBBBF". An entry whose key is null counts with an empty text. "PresetName" with a
// value sets gotServerPresetFromJP. When extraPending is not 0 it and extraCount become "0". The record is
// copied to sharedListCopyFromJP, and gotSharedListFromJP set: this is the way of what the module returned.
void Create_SharedMemoryList_From_SDMList(SharedMemoryList& record, const SDMKeyValueList& list);
// The same without the traces of a module's return: the way of the pane's own settings.
void writeSettings(SharedMemoryList& record, const SDMKeyValueList& list);

// The record's settings as a list of count + extraCount entries, of which those beyond `count` have empty
// texts. A value that begins with "EFBBBF" has each of them turned into a byte-order mark. When the module
// returned a list with a preset of the server and some value is not what it returned under the same key,
// "PresetName" becomes empty: the settings are no longer those of the preset. Clears gotSharedListFromJP.
void Create_SDMList_From_SharedMemoryList(KeyValueList& out, const SharedMemoryList& record);

// The definitions in the record's combined list, at most `count`.
void GetWatermarkList_From_CombinedList(WatermarkDefinitions& out, std::string_view combined,
                                        std::size_t count);
void Create_SDMWatermarkList_From_SharedMemoryList(WatermarkDefinitions& out, const SharedMemoryList& record);
// How many went into the record, see setWatermarkDefinitions. Null texts are left out.
std::size_t Create_SharedMemoryWatermarkList_From_SDMList(SharedMemoryList& record,
                                                          const JPWatermarkList& list);

// Shows a list's entries on the standard error stream.
void PrintSDMKeyValueList(const SDMKeyValueList& list);

} // namespace torka
