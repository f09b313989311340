// SPDX-License-Identifier: Apache-2.0
// Converts arbitrary record texts of server data to the module's structures. A refusal leaves no block and no
// out-parameter. A result can be freed completely, and a text written from it is read as the same structure.
//
// Input: the first byte selects the converter, and whether the text is UTF-8 or raw 32-bit units. The second
// byte selects the allocation that fails. The rest is the text.

#include "bidi/records/RecordEncoding.h"
#include "bidi/serverdata/CUtil.h"
#include "bidi/serverdata/ServerDataToBuffer.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerDataXml.h"
#include "bidi/serverdata/ServerRecords.h"
#include "fuzz/Fuzzing.h"
#include "fuzz/QuietStreams.h"
#include "platform/TextEncoding.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

using namespace torka;
using namespace torka::fuzz;

std::size_t blocks = 0;
std::size_t allocationsLeft = 0;

const ModuleMemory memory(
    [](SDMHANDLE /*handle*/, std::size_t size) -> void* {
        if (allocationsLeft == 0) {
            return nullptr;
        }
        --allocationsLeft;
        ++blocks;
        return std::malloc(size);
    },
    [](void* block) {
        --blocks;
        std::free(block);
    });

using ListConverter = bool (*)(std::wstring_view, const ModuleMemory&, SDMKeyValueList*&);

bool listFromWideSet(std::wstring_view text, const ModuleMemory& module, SDMKeyValueList*& out) {
    return SDMAllocKeyValueListFromKeyValueSetWChar(module, text, out);
}

bool listFromNarrowSet(std::wstring_view text, const ModuleMemory& module, SDMKeyValueList*& out) {
    return SDMAllocKeyValueListFromKeyValueSet(module, utf8FromWide(text), out);
}

void checkList(bool isGood, SDMKeyValueList* list) {
    require(isGood == (list != nullptr));
    for (std::size_t i = 0; list && i < list->count; ++i) {
        require(list->items[i].szKey && list->items[i].szValue);
    }
    memory.FreeList(list);
}

void checkSet(std::wstring_view text, ListConverter convert) {
    SDMKeyValueList* list = nullptr;
    const bool isGood = convert(text, memory, list);
    checkList(isGood, list);
}

void checkText(bool isGood, wchar_t* text) {
    require(isGood == (text != nullptr));
    memory.Free(text);
}

void checkToners(std::wstring_view text) {
    SDMTonerInfoArray* toners = nullptr;
    const bool isGood = GetTonerInfoToSDM(text, memory, toners);
    require(isGood == (toners != nullptr));
    const std::wstring written = toners ? TonerInfoToBuffer(toners) : std::wstring();
    memory.FreeToners(toners);
    allocationsLeft = SIZE_MAX;
    if (isGood) {
        require(GetTonerInfoToSDM(written, memory, toners) && TonerInfoToBuffer(toners) == written);
        memory.FreeToners(toners);
    }
}

void checkTrays(std::wstring_view text) {
    SDMTrayInfoArray* trays = nullptr;
    const bool isGood = GetTrayInfoToSDM(text, memory, trays);
    require(isGood == (trays != nullptr));
    const std::wstring written = trays ? TrayInfoToBuffer(trays) : std::wstring();
    memory.FreeTrays(trays);
    allocationsLeft = SIZE_MAX;
    if (isGood) {
        require(GetTrayInfoToSDM(written, memory, trays) && TrayInfoToBuffer(trays) == written);
        memory.FreeTrays(trays);
    }
}

void checkNames(std::wstring_view text) {
    wchar_t** names = nullptr;
    int count = 1;
    const bool isGood = GetServerPresetNamesListToSDM(text, memory, names, count);
    require(isGood ? (count > 0) == (names != nullptr) : !names && count == 0);
    CUtil::deallocateArrayOfStrings(memory, names, static_cast<std::size_t>(count));
}

void checkPreset(std::wstring_view text) {
    std::array<SDMKeyValueList*, 3> sets{};
    // Asks for the preset that the text's last line names when the text has an odd length; else for the first
    // preset.
    const std::wstring_view name =
        text.size() % 2 == 0 ? std::wstring_view() : text.substr(text.rfind(L'\n') + 1);
    const bool isGood = GetServerPresetDataByNameToSDM(text, memory, name, sets[0], sets[1], sets[2]);
    const std::wstring written =
        isGood ? ServerPresetDataByNameToBuffer(L"P", sets[0], sets[1], sets[2]) : std::wstring();
    for (SDMKeyValueList* set : sets) {
        checkList(isGood, set);
    }
    allocationsLeft = SIZE_MAX;
    if (isGood) {
        require(GetServerPresetDataByNameToSDM(written, memory, L"P", sets[0], sets[1], sets[2]));
        require(ServerPresetDataByNameToBuffer(L"P", sets[0], sets[1], sets[2]) == written);
        for (SDMKeyValueList* set : sets) {
            memory.FreeList(set);
        }
    }
}

// Input: the text's first line is the key.
void checkValues(std::wstring_view text) {
    const std::wstring_view key = text.substr(0, text.find(L'\n'));
    const std::wstring_view rest = text.substr(std::min(key.size() + 1, text.size()));
    wchar_t* value = nullptr;
    bool isGood = GetServerFeatureValueToSDM(rest, memory, key, value);
    checkText(isGood, value);
    bool isSupported = true;
    const bool isKnown = IsServerFeatureSupportedToSDM(rest, key, isSupported);
    require(isKnown || (!isSupported && !isGood));
    isGood = GetServerValueFromDictToSDM(rest, memory, key, value);
    require(!isGood || CUtil::findLineWithKey(key, rest, L"\n"));
    checkText(isGood, value);
    for (int item = -1; item < 18; ++item) {
        isGood = GetServerInfoToSDM(text, memory, item, value);
        checkText(isGood, value);
    }
}

void checkOneText(std::wstring_view text) {
    wchar_t* first = nullptr;
    wchar_t* second = nullptr;
    bool isGood = UpdateQuillformMastersToSDM(text, memory, first);
    checkText(isGood, first);
    isGood = GetLocalPresetsDataToSDM(text, memory, first);
    checkText(isGood, first);
    isGood = GetCalibrationToSDM(text, memory, first, second);
    checkText(isGood, first);
    checkText(isGood, second);
}

void checkTemplate(std::wstring_view text) {
    std::array<SDMKeyValueList*, 3> lists{};
    const bool isGood = GetDMTOverridesToSDM(text, memory, lists[0], lists[1], lists[2]);
    for (SDMKeyValueList* list : lists) {
        for (std::size_t i = 1; list && i < list->count; ++i) {
            require(std::wstring_view(list->items[i - 1].szKey) < list->items[i].szKey);
        }
        checkList(isGood, list);
    }
}

// Escaped text has no markup, and the XML text keeps its limit.
void checkXml(std::wstring_view text) {
    const std::wstring escaped = xmlEscaped(text);
    require(escaped.find_first_of(L"<>\"'\t\r\n") == std::wstring::npos && isProperWideText(escaped));
    const std::array<KeyValueView, 2> options = {KeyValueView{text, L"a"}, KeyValueView{L"b", text}};
    for (const std::size_t limit : {0U, 300U, 600U, 2047U}) {
        const std::wstring xml = serverDataXml({L"en", std::wstring(text), std::nullopt}, options, limit);
        require(xml.size() <= limit && (xml.empty() || xml.ends_with(L"</SMDData>")));
    }
}

constexpr std::array<ListConverter, 8> listConverters = {
    listFromWideSet,         listFromNarrowSet,
    PPDDefaultsToSDM,        QueueDefaultsToSDM,
    GetServerInfoAllToSDM,   UpdateHueKeeperOptionsToSDM,
    GetLoclHelpStringsToSDM, GetAllDeviceLinkProfilesToSDM};

constexpr std::array<void (*)(std::wstring_view), 8> checks = {
    checkToners, checkTrays, checkNames, checkPreset, checkValues, checkOneText, checkTemplate, checkXml};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quietStreams();
    if (size < 2) {
        return 0;
    }
    // Both bytes are printable, so that seeds can be written by hand. The first is '@' + converter, with 32
    // added for raw units. The second is '0' + number of allocations that succeed, or '~' for no limit.
    const std::size_t selected = data[0] & 15U;
    const bool isRaw = (data[0] & 32U) != 0;
    allocationsLeft = data[1] == '~' ? SIZE_MAX : static_cast<std::size_t>(data[1] - '0') % 128;
    const std::string bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
    const std::wstring text = isRaw ? wideFromPayload(bytes) : wideFromUtf8(bytes);
    if (selected < checks.size()) {
        checks[selected](text);
    } else {
        checkSet(text, listConverters[selected - checks.size()]);
    }
    require(blocks == 0);
    return 0;
}
