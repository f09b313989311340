// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ServerDataToBuffer.h"

#include "bidi/serverdata/ByteOrderMark.h"
#include "bidi/serverdata/ServerDataToSDM.h"
#include "bidi/serverdata/ServerDataXml.h"
#include "bidi/serverdata/ServerRecords.h"
#include "bidi/text/CBuffer.h"
#include "platform/TextEncoding.h"

#include <vector>

namespace torka {

namespace {

std::wstring_view textOf(const wchar_t* text) { return text ? std::wstring_view(text) : std::wstring_view(); }

// Appends the text with blanks in place of line ends and separators.
void addField(CBuffer& buffer, std::wstring_view text, wchar_t separator = L'\n') {
    std::wstring carried(text);
    for (wchar_t& unit : carried) {
        if (unit == L'\n' || unit == separator) {
            unit = L' ';
        } else if (!isProperWideText({&unit, 1})) {
            unit = L'\xFFFD';
        }
    }
    buffer.AddString(carried);
}

void addTonerText(CBuffer& buffer, const wchar_t* text) {
    if (text) {
        addField(buffer, text, L'@');
    } else {
        buffer.AddString(absentTonerText);
    }
    buffer.AddString(L"@");
}

void addTrayText(CBuffer& buffer, const wchar_t* text) {
    if (text) {
        addField(buffer, text, L'@');
    } else {
        buffer.AddString(absentTrayText);
    }
    buffer.AddString(L"@");
}

void addCount(CBuffer& buffer, std::size_t count) { buffer.AddString(std::to_wstring(count) + L"\n"); }

// The list's pairs whose keys a key/value line can carry.
std::vector<KeyValueView> pairsOf(const SDMKeyValueList* list) {
    std::vector<KeyValueView> pairs;
    for (std::size_t i = 0; list && list->items && i < list->count; ++i) {
        const std::wstring_view key = textOf(list->items[i].szKey);
        if (!key.empty() && key.find(L'=') == std::wstring_view::npos) {
            pairs.emplace_back(key, textOf(list->items[i].szValue));
        }
    }
    return pairs;
}

void addPair(CBuffer& buffer, std::wstring_view key, std::wstring_view value) {
    addField(buffer, key);
    buffer.AddString(L"=");
    addField(buffer, value);
    buffer.AddString(L"\n");
}

} // namespace

std::wstring TonerInfoToBuffer(const SDMTonerInfoArray* toners) {
    CBuffer buffer;
    const std::size_t count = toners && toners->items ? toners->count : 0;
    addCount(buffer, count);
    for (std::size_t i = 0; i < count; ++i) {
        const SDMTonerInfo& toner = toners->items[i];
        addField(buffer, textOf(toner.name), L'@');
        buffer.AddString(L"@");
        buffer.AddInt(toner.level);
        buffer.AddString(L"@");
        buffer.AddInt(toner.lowLevel);
        buffer.AddString(L"@");
        addTonerText(buffer, toner.color);
        buffer.AddInt(toner.highLevel);
        buffer.AddString(L"@");
        buffer.AddInt(toner.capacity);
        buffer.AddString(L"@");
        buffer.AddInt(toner.kind);
        buffer.AddString(L"\n");
    }
    return buffer.GetStringData();
}

std::wstring TrayInfoToBuffer(const SDMTrayInfoArray* trays) {
    CBuffer buffer;
    const std::size_t count = trays && trays->items ? trays->count : 0;
    addCount(buffer, count);
    for (std::size_t i = 0; i < count; ++i) {
        const SDMTrayInfo& tray = trays->items[i];
        for (const wchar_t* text :
             {tray.name, tray.key, tray.mediaName, tray.mediaSize, tray.mediaType, tray.mediaColor}) {
            addTrayText(buffer, text);
        }
        buffer.AddInt(tray.level);
        buffer.AddString(L"@");
        buffer.AddInt(tray.capacity);
        buffer.AddString(L"\n");
    }
    return buffer.GetStringData();
}

std::wstring AllDeviceLinkProfilesToBuffer(const SDMKeyValueList* profiles) {
    CBuffer buffer;
    for (const auto& [key, value] : pairsOf(profiles)) {
        addPair(buffer, key, value);
    }
    return buffer.GetStringData();
}

std::wstring PPDDefaultsToBuffer(const SDMKeyValueList* defaults) {
    CBuffer buffer;
    for (const auto& [key, value] : pairsOf(defaults)) {
        addPair(buffer, key, value.empty() ? emptyDefault : value);
    }
    return buffer.GetStringData();
}

std::wstring LoclHelpStringsToBuffer(std::span<const wchar_t* const> texts) {
    CBuffer buffer;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::wstring_view text = textOf(texts[i]);
        const std::size_t place = text.find(L'=');
        const bool hasKey = place != 0 && place != std::wstring_view::npos;
        addPair(buffer, hasKey ? text.substr(0, place) : std::wstring_view(std::to_wstring(i)),
                hasKey ? text.substr(place + 1) : text);
    }
    return buffer.GetStringData();
}

std::wstring ServerPresetNamesListToBuffer(std::span<const wchar_t* const> names) {
    CBuffer lines;
    std::size_t count = 0;
    for (const wchar_t* name : names) {
        if (!textOf(name).empty()) {
            addField(lines, name);
            lines.AddString(L"\n");
            ++count;
        }
    }
    CBuffer buffer;
    addCount(buffer, count);
    buffer.AddString(lines.GetStringData());
    return buffer.GetStringData();
}

std::wstring ServerPresetDataByNameToBuffer(std::wstring_view name, const SDMKeyValueList* jobList,
                                            const SDMKeyValueList* tesselList,
                                            const SDMKeyValueList* presetList) {
    CBuffer buffer;
    addField(buffer, name);
    buffer.AddString(L"\n");
    std::size_t set = 0;
    for (const SDMKeyValueList* list : {jobList, tesselList, presetList}) {
        const std::vector<KeyValueView> pairs = pairsOf(list);
        buffer.AddString(presetSets[set++]);
        addCount(buffer, pairs.size());
        for (const auto& [key, value] : pairs) {
            addPair(buffer, key, withMarkLetters(value));
        }
    }
    return buffer.GetStringData();
}

std::wstring CalibrationToBuffer(std::wstring_view calibrations, std::wstring_view current) {
    CBuffer buffer;
    addPair(buffer, calibrationsKey, calibrations);
    addPair(buffer, currentCalibrationKey, current);
    return buffer.GetStringData();
}

std::wstring PreviewPagesCountToBuffer(long count) { return std::to_wstring(count); }

std::wstring ServerValueFromDictToBuffer(std::wstring_view values) { return std::wstring(values); }

std::wstring UpdateHueKeeperOptionsToBuffer(std::wstring_view options) { return std::wstring(options); }

std::wstring QuillformMastersToBuffer(std::wstring_view masters) { return std::wstring(masters); }

std::wstring ServerDataToBuffer(std::wstring_view installedOptions, std::string_view language,
                                std::string_view ppdPath, std::string_view server) {
    const RecordResult<KeyValueView> options = readKeyValueSet(installedOptions);
    return serverDataXml({wideFromUtf8(language), wideFromUtf8(ppdPath), wideFromUtf8(server)},
                         options ? *options : std::vector<KeyValueView>());
}

} // namespace torka
