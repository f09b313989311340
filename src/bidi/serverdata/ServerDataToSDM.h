// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/memory/ModuleMemory.h"

#include <string_view>

// Converts record texts of server data into the results of the Job Properties callbacks.
// docs/two-way-records.md describes the formats.
//
// When a function returns true, the caller owns the blocks in the out-parameters, which come from the given
// memory. A function returns false when the text is empty, incomplete or invalid, when it lacks the wanted
// item, or when memory runs out. The out-parameters are then null or zero, and nothing stays allocated.

namespace torka {

// Copies a text unchanged. False for an empty text.
bool AllocAndAssignValue(const ModuleMemory& memory, wchar_t*& out, std::wstring_view text);
// The entries of a key/value set in their order, repeated keys included.
bool SDMAllocKeyValueListFromKeyValueSetWChar(const ModuleMemory& memory, std::wstring_view text,
                                              SDMKeyValueList*& out);

bool GetTonerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTonerInfoArray*& toners);
bool GetTrayInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTrayInfoArray*& trays);

// Records that are key/value sets.
bool UpdateHueKeeperOptionsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool GetAllDeviceLinkProfilesToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool GetLoclHelpStringsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
// Key/value sets of defaults. The value "EMPTYSTRING" means an empty value.
bool PPDDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool QueueDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);

// All items of the server's information, each with its key first.
bool GetServerInfoAllToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
// The value of a key in a record of "value:key" lines, the form of the server's information.
bool GetServerValueFromDictToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                 wchar_t*& out);

// Without presets: true, with null and 0.
bool GetServerPresetNamesListToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t**& names,
                                   int& count);
// The three sets of the preset with that name; of the record's first preset when the name is empty. In a
// value that begins with "EFBBBF", each "EFBBBF" becomes a byte-order mark.
bool GetServerPresetDataByNameToSDM(std::wstring_view text, const ModuleMemory& memory,
                                    std::wstring_view name, SDMKeyValueList*& jobValues,
                                    SDMKeyValueList*& tesselValues, SDMKeyValueList*& presetValues);

// The settings that an administrator's template sets, locks and hides. Each list is in the order of its keys
// and may be empty. False without the template's section for the user interface. Writes the findings to the
// standard error stream.
bool GetDMTOverridesToSDM(std::wstring_view xml, const ModuleMemory& memory, SDMKeyValueList*& jobValues,
                          SDMKeyValueList*& readOnlyKeys, SDMKeyValueList*& veiledKeys);

// The keys of the calibration record.
inline constexpr std::wstring_view calibrationsKey = L"Calibrations";
inline constexpr std::wstring_view currentCalibrationKey = L"CurrentCalibration";

// Given interface; no caller here
// As the wide one, from UTF-8.
bool SDMAllocKeyValueListFromKeyValueSet(const ModuleMemory& memory, std::string_view text,
                                         SDMKeyValueList*& out);
// One item of the server's information, by its number in JPSERVERINFO.
bool GetServerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, int item, wchar_t*& out);
// One feature of a key/value set. A feature is supported when its value is "1", "True" or "Yes" in any letter
// case.
bool IsServerFeatureSupportedToSDM(std::wstring_view text, std::wstring_view key, bool& isSupported);
bool GetServerFeatureValueToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                wchar_t*& out);
// The presets of this computer. Every "EFBBBF" becomes a byte-order mark.
bool GetLocalPresetsDataToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out);
bool GetCalibrationToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& calibrations,
                         wchar_t*& current);
bool UpdateQuillformMastersToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out);

} // namespace torka
