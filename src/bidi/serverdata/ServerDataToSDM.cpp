// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ServerDataToSDM.h"

#include "bidi/serverdata/ByteOrderMark.h"
#include "bidi/serverdata/CUtil.h"
#include "bidi/serverdata/ServerRecords.h"
#include "bidi/text/StandardStreams.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

namespace torka {

namespace {

// Frees a structure that was not handed over to the caller.
class FreeStructure {
public:
    explicit FreeStructure(const ModuleMemory& moduleMemory)
        : memory(&moduleMemory) {}
    void operator()(SDMKeyValueList* list) const { memory->FreeList(list); }
    void operator()(SDMTonerInfoArray* toners) const { memory->FreeToners(toners); }
    void operator()(SDMTrayInfoArray* trays) const { memory->FreeTrays(trays); }
    void operator()(wchar_t* text) const { memory->Free(text); }

private:
    const ModuleMemory* memory;
};
template <typename T>
using Owned = std::unique_ptr<T, FreeStructure>;

// Allocates a counted array with room for `count` zeroed items. Sets the count at once, so that a partly
// built structure can be freed.
template <typename Array>
Owned<Array> newCounted(const ModuleMemory& memory, std::size_t count) {
    Owned<Array> array(memory.NewArray<Array>(1), FreeStructure(memory));
    if (array && count > 0) {
        array->items = memory.NewArray<std::remove_pointer_t<decltype(array->items)>>(count);
        if (!array->items) {
            return Owned<Array>(nullptr, FreeStructure(memory));
        }
        array->count = count;
    }
    return array;
}

bool assign(const ModuleMemory& memory, wchar_t*& place, std::wstring_view text) {
    place = memory.NewText(text);
    return place != nullptr;
}

bool assign(const ModuleMemory& memory, wchar_t*& place, const std::optional<std::wstring_view>& text) {
    return !text || assign(memory, place, *text);
}

// Builds a list from pairs of texts; `valueOf` converts each value.
template <typename Pairs, typename ValueOf>
Owned<SDMKeyValueList> newList(const ModuleMemory& memory, const Pairs& pairs, ValueOf valueOf) {
    auto list = newCounted<SDMKeyValueList>(memory, pairs.size());
    SDMKeyValue* item = list ? list->items : nullptr;
    for (const auto& [key, value] : pairs) {
        if (!list || !assign(memory, item->szKey, std::wstring_view(key)) ||
            !assign(memory, item->szValue, std::wstring_view(valueOf(value)))) {
            return Owned<SDMKeyValueList>(nullptr, FreeStructure(memory));
        }
        ++item;
    }
    return list;
}

std::wstring_view asItStands(std::wstring_view value) { return value; }
std::wstring_view withoutPlaceholder(std::wstring_view value) {
    return value == emptyDefault ? std::wstring_view() : value;
}

template <typename ValueOf>
bool listFromSet(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out, ValueOf valueOf) {
    const RecordResult<KeyValueView> pairs = readKeyValueSet(text);
    out = pairs ? newList(memory, *pairs, valueOf).release() : nullptr;
    return out != nullptr;
}

// The first value of a key in a key/value set.
std::optional<std::wstring_view> valueOfKey(std::wstring_view text, std::wstring_view key) {
    const RecordResult<KeyValueView> pairs = readKeyValueSet(text);
    if (!pairs) {
        return std::nullopt;
    }
    const auto place = std::ranges::find(*pairs, key, &KeyValueView::first);
    return place == pairs->end() ? std::nullopt : std::optional(place->second);
}

std::wstring_view serverInfoKey(int item) {
    switch (item) {
    case JPSERVERINFO_SERVER_NAME:
        return L"ServerName";
    case JPSERVERINFO_SERVER_VERSION:
        return L"ServerVersion";
    case JPSERVERINFO_DISK_AVAILABLE:
        return L"DiskAvailable";
    case JPSERVERINFO_DISK_TOTAL:
        return L"DiskTotal";
    case JPSERVERINFO_MEM_AVAILABLE:
        return L"MemAvailable";
    case JPSERVERINFO_PRODUCT_FAMILY:
        return L"ProductFamily";
    case JPSERVERINFO_SERVER_OS:
        return L"ServerOS";
    case JPSERVERINFO_PCL_SUPPORT:
        return L"PCLSupport";
    case JPSERVERINFO_PS_SUPPORT:
        return L"PSSupport";
    case JPSERVERINFO_HUE_KEEPER:
        return L"HueKeeper";
    case JPSERVERINFO_MEM_SIZE:
        return L"MemSize";
    default:
        return {};
    }
}

bool isYes(std::wstring_view value) {
    const auto equals = [value](std::wstring_view word) {
        return std::equal(value.begin(), value.end(), word.begin(), word.end(), [](wchar_t a, wchar_t b) {
            return (a >= L'A' && a <= L'Z' ? a - L'A' + L'a' : a) == b;
        });
    };
    return equals(L"1") || equals(L"true") || equals(L"yes");
}

} // namespace

bool AllocAndAssignValue(const ModuleMemory& memory, wchar_t*& out, std::wstring_view text) {
    out = nullptr;
    return !text.empty() && isProperWideText(text) && assign(memory, out, text);
}

bool SDMAllocKeyValueListFromKeyValueSet(const ModuleMemory& memory, std::string_view text,
                                         SDMKeyValueList*& out) {
    out = nullptr;
    const std::optional<std::u16string> units = decodeText(text, kCFStringEncodingUTF8);
    return units && SDMAllocKeyValueListFromKeyValueSetWChar(memory, wideFromUtf16(*units), out);
}

bool SDMAllocKeyValueListFromKeyValueSetWChar(const ModuleMemory& memory, std::wstring_view text,
                                              SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, asItStands);
}

bool GetTonerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTonerInfoArray*& toners) {
    toners = nullptr;
    const RecordResult<TonerView> views = readToners(text);
    if (!views) {
        return false;
    }
    auto array = newCounted<SDMTonerInfoArray>(memory, views->size());
    SDMTonerInfo* item = array ? array->items : nullptr;
    for (const TonerView& view : *views) {
        if (!array || !assign(memory, item->name, view.name) || !assign(memory, item->color, view.color)) {
            return false;
        }
        item->level = view.level;
        item->lowLevel = view.lowLevel;
        item->highLevel = view.highLevel;
        item->capacity = view.capacity;
        item->kind = view.kind;
        ++item;
    }
    toners = array.release();
    return toners != nullptr;
}

bool GetTrayInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTrayInfoArray*& trays) {
    trays = nullptr;
    const RecordResult<TrayView> views = readTrays(text);
    if (!views) {
        return false;
    }
    auto array = newCounted<SDMTrayInfoArray>(memory, views->size());
    SDMTrayInfo* item = array ? array->items : nullptr;
    for (const TrayView& view : *views) {
        const auto& [name, key, mediaName, mediaSize, mediaType, mediaColor] = view.texts;
        if (!array || !assign(memory, item->name, name) || !assign(memory, item->key, key) ||
            !assign(memory, item->mediaName, mediaName) || !assign(memory, item->mediaSize, mediaSize) ||
            !assign(memory, item->mediaType, mediaType) || !assign(memory, item->mediaColor, mediaColor)) {
            return false;
        }
        item->level = view.level;
        item->capacity = view.capacity;
        ++item;
    }
    trays = array.release();
    return trays != nullptr;
}

bool UpdateHueKeeperOptionsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, asItStands);
}

bool GetAllDeviceLinkProfilesToSDM(std::wstring_view text, const ModuleMemory& memory,
                                   SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, asItStands);
}

bool GetLoclHelpStringsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, asItStands);
}

bool PPDDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, withoutPlaceholder);
}

bool QueueDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    return listFromSet(text, memory, out, withoutPlaceholder);
}

bool GetServerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, int item, wchar_t*& out) {
    return GetServerValueFromDictToSDM(text, memory, serverInfoKey(item), out);
}

bool GetServerInfoAllToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out) {
    const RecordResult<KeyValueView> pairs = readServerInfo(text);
    out = pairs ? newList(memory, *pairs, asItStands).release() : nullptr;
    return out != nullptr;
}

bool GetServerValueFromDictToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                 wchar_t*& out) {
    out = nullptr;
    if (!isProperWideText(text)) {
        return false;
    }
    const std::optional<std::wstring_view> value = valueBeforeKey(text, key);
    return value && AllocAndAssignValue(memory, out, *value);
}

bool IsServerFeatureSupportedToSDM(std::wstring_view text, std::wstring_view key, bool& isSupported) {
    const std::optional<std::wstring_view> value = valueOfKey(text, key);
    isSupported = value && isYes(*value);
    return value.has_value();
}

bool GetServerFeatureValueToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                wchar_t*& out) {
    out = nullptr;
    const std::optional<std::wstring_view> value = valueOfKey(text, key);
    return value && AllocAndAssignValue(memory, out, *value);
}

bool GetServerPresetNamesListToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t**& names,
                                   int& count) {
    names = nullptr;
    count = 0;
    const RecordResult<std::wstring_view> views = readPresetNames(text);
    if (!views) {
        return false;
    }
    if (views->empty()) {
        return true;
    }
    wchar_t** array = memory.NewArray<wchar_t*>(views->size());
    for (std::size_t i = 0; array && i < views->size(); ++i) {
        if (!assign(memory, array[i], (*views)[i])) {
            CUtil::deallocateArrayOfStrings(memory, array, views->size());
        }
    }
    names = array;
    count = array ? static_cast<int>(views->size()) : 0;
    return array != nullptr;
}

bool GetServerPresetDataByNameToSDM(std::wstring_view text, const ModuleMemory& memory,
                                    std::wstring_view name, SDMKeyValueList*& jobValues,
                                    SDMKeyValueList*& tesselValues, SDMKeyValueList*& presetValues) {
    jobValues = tesselValues = presetValues = nullptr;
    const RecordResult<PresetView> presets = readPresets(text);
    if (!presets) {
        return false;
    }
    const auto preset = std::ranges::find_if(
        *presets, [&](const PresetView& candidate) { return name.empty() || candidate.name == name; });
    if (preset == presets->end()) {
        return false;
    }
    const auto valueOf = [](std::wstring_view value) { return withMarks(value); };
    auto job = newList(memory, preset->sets[0], valueOf);
    auto tessel = newList(memory, preset->sets[1], valueOf);
    auto own = newList(memory, preset->sets[2], valueOf);
    if (!job || !tessel || !own) {
        return false;
    }
    jobValues = job.release();
    tesselValues = tessel.release();
    presetValues = own.release();
    return true;
}

bool GetLocalPresetsDataToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
    return AllocAndAssignValue(memory, out, CUtil::__replaceW(text, wideMarkLetters, wideMark));
}

bool GetCalibrationToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& calibrations,
                         wchar_t*& current) {
    calibrations = current = nullptr;
    const std::optional<std::wstring_view> first = valueOfKey(text, calibrationsKey);
    const std::optional<std::wstring_view> second = valueOfKey(text, currentCalibrationKey);
    if (!first || !second) {
        return false;
    }
    Owned<wchar_t> one(memory.NewText(*first), FreeStructure(memory));
    Owned<wchar_t> other(memory.NewText(*second), FreeStructure(memory));
    if (!one || !other) {
        return false;
    }
    calibrations = one.release();
    current = other.release();
    return true;
}

bool UpdateQuillformMastersToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out) {
    return AllocAndAssignValue(memory, out, text);
}

bool GetDMTOverridesToSDM(std::wstring_view xml, const ModuleMemory& memory, SDMKeyValueList*& jobValues,
                          SDMKeyValueList*& readOnlyKeys, SDMKeyValueList*& veiledKeys) {
    jobValues = readOnlyKeys = veiledKeys = nullptr;
    std::wstring part;
    if (!isProperWideText(xml) ||
        !CUtil::GetNodeDataFromXMLData(xml, L"<Category name=\"UI-Modification\">", L"</Category>", part)) {
        return false;
    }
    standardStreams().Error("DMT XML data =" + utf8FromWide(part) + "\n");
    CUtil::KeyValues controls;
    CUtil::KeyValues locked;
    CUtil::KeyValues hidden;
    CUtil::GetControlKeyValFromDMTXmlData(part, controls);
    CUtil::GetLockedKeyValFromDMTXmlData(part, locked);
    CUtil::GetHiddenKeyValFromDMTXmlData(part, hidden);
    auto job = newList(memory, controls, asItStands);
    auto readOnly = newList(memory, locked, asItStands);
    auto veiled = newList(memory, hidden, asItStands);
    if (!job || !readOnly || !veiled) {
        return false;
    }
    jobValues = job.release();
    readOnlyKeys = readOnly.release();
    veiledKeys = veiled.release();
    return true;
}

} // namespace torka
