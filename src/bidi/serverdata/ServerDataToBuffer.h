#pragma once

#include "bidi/JobPropertiesModule.h"

#include <span>
#include <string>
#include <string_view>

// Record texts of server data, as the spooler's side writes them; docs/two-way-records.md has the formats.
// Each is what the converter of the same name in ServerDataToSDM reads.
//
// What a format cannot carry: a line end, and "@" within a toner or tray entry, become a blank; units that
// are no characters become U+FFFD; a setting without a name, or with "=" in it, is left out. A null structure
// is an empty one.

namespace torka {

std::wstring TonerInfoToBuffer(const SDMTonerInfoArray* toners);
std::wstring TrayInfoToBuffer(const SDMTrayInfoArray* trays);
std::wstring AllDeviceLinkProfilesToBuffer(const SDMKeyValueList* profiles);
// An empty value is written as "EMPTYSTRING". For the defaults of a queue as well.
std::wstring PPDDefaultsToBuffer(const SDMKeyValueList* defaults);
// A setting and its help text, "key=value", each. A text without "=" has its position for a key.
std::wstring LoclHelpStringsToBuffer(std::span<const wchar_t* const> texts);
std::wstring ServerPresetNamesListToBuffer(std::span<const wchar_t* const> names);
// One preset; several texts may follow one another in one record.
std::wstring ServerPresetDataByNameToBuffer(std::wstring_view name, const SDMKeyValueList* jobList,
                                            const SDMKeyValueList* tesselList,
                                            const SDMKeyValueList* presetList);
std::wstring CalibrationToBuffer(std::wstring_view calibrations, std::wstring_view current);
std::wstring PreviewPagesCountToBuffer(long count);
// Texts that are records as they stand: lines of "value:key", of "key=value", names.
std::wstring ServerValueFromDictToBuffer(std::wstring_view values);
std::wstring UpdateHueKeeperOptionsToBuffer(std::wstring_view options);
std::wstring QuillformMastersToBuffer(std::wstring_view masters);
// The XML "SMDData" of a server: `installedOptions` is a key/value set, the others are narrow UTF-8.
std::wstring ServerDataToBuffer(std::wstring_view installedOptions, std::string_view language,
                                std::string_view ppdPath, std::string_view server);

} // namespace torka
