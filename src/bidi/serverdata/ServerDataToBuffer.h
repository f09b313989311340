// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/JobPropertiesModule.h"

#include <span>
#include <string>
#include <string_view>

// Writes record texts of server data, on the spooler's side. docs/two-way-records.md describes the formats.
// The converter of the same name in ServerDataToSDM reads each text.
//
// Limits of the formats: a line end, and "@" in a toner or tray entry, become a blank. Units that are no
// characters become U+FFFD. A setting with an empty name, or with "=" in its name, is left out. A null
// structure counts as an empty one.

namespace torka {

std::wstring TonerInfoToBuffer(const SDMTonerInfoArray* toners);
std::wstring TrayInfoToBuffer(const SDMTrayInfoArray* trays);

// Given interface; no caller here
std::wstring AllDeviceLinkProfilesToBuffer(const SDMKeyValueList* profiles);
// Writes an empty value as "EMPTYSTRING". Also serves for the defaults of a queue.
std::wstring PPDDefaultsToBuffer(const SDMKeyValueList* defaults);
// Each text is "key=value": a setting and its help text. A text without "=" gets its position as the key.
std::wstring LoclHelpStringsToBuffer(std::span<const wchar_t* const> texts);
std::wstring ServerPresetNamesListToBuffer(std::span<const wchar_t* const> names);
// Writes one preset. One record may hold several such texts, one behind the other.
std::wstring ServerPresetDataByNameToBuffer(std::wstring_view name, const SDMKeyValueList* jobList,
                                            const SDMKeyValueList* tesselList,
                                            const SDMKeyValueList* presetList);
std::wstring CalibrationToBuffer(std::wstring_view calibrations, std::wstring_view current);
std::wstring PreviewPagesCountToBuffer(long count);
// These texts are records already: lines of "value:key", lines of "key=value", names.
std::wstring ServerValueFromDictToBuffer(std::wstring_view values);
std::wstring UpdateHueKeeperOptionsToBuffer(std::wstring_view options);
std::wstring QuillformMastersToBuffer(std::wstring_view masters);
// The XML text "SMDData" of a server. `installedOptions` is a key/value set; the other arguments are UTF-8.
std::wstring ServerDataToBuffer(std::wstring_view installedOptions, std::string_view language,
                                std::string_view ppdPath, std::string_view server);

} // namespace torka
