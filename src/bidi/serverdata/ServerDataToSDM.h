#pragma once

#include "bidi/memory/ModuleMemory.h"

#include <string_view>

// Record texts of server data turned into what the Job Properties callbacks return. docs/two-way-records.md
// has the formats.
//
// Every out-parameter is null or zero at first and stays so unless the answer is true; then the caller owns
// what it points to, block by block in the given memory. False: the text is empty, not whole or no text, what
// was asked for is not in it, or there is no memory; nothing stays allocated then.

namespace torka {

// A text as it stands; an empty one is none.
bool AllocAndAssignValue(const ModuleMemory& memory, wchar_t*& out, std::wstring_view text);
// A list of a key/value set in its order, keys that come twice included. Narrow text is UTF-8.
bool SDMAllocKeyValueListFromKeyValueSet(const ModuleMemory& memory, std::string_view text,
                                         SDMKeyValueList*& out);
bool SDMAllocKeyValueListFromKeyValueSetWChar(const ModuleMemory& memory, std::wstring_view text,
                                              SDMKeyValueList*& out);

bool GetTonerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTonerInfoArray*& toners);
bool GetTrayInfoToSDM(std::wstring_view text, const ModuleMemory& memory, SDMTrayInfoArray*& trays);

// Key/value sets.
bool UpdateHueKeeperOptionsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool GetAllDeviceLinkProfilesToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool GetLoclHelpStringsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
// Those of defaults, where the value "EMPTYSTRING" stands for an empty one.
bool PPDDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
bool QueueDefaultsToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);

// One item of the server's information, by its number in JPSERVERINFO.
bool GetServerInfoToSDM(std::wstring_view text, const ModuleMemory& memory, int item, wchar_t*& out);
// All of it, keys in front.
bool GetServerInfoAllToSDM(std::wstring_view text, const ModuleMemory& memory, SDMKeyValueList*& out);
// The value of a key that stands behind it, as in the server's information.
bool GetServerValueFromDictToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                 wchar_t*& out);
// One feature of a key/value set. It is supported when its value is "1", "True" or "Yes" in any letter case.
bool IsServerFeatureSupportedToSDM(std::wstring_view text, std::wstring_view key, bool& isSupported);
bool GetServerFeatureValueToSDM(std::wstring_view text, const ModuleMemory& memory, std::wstring_view key,
                                wchar_t*& out);

// No presets: true, null and 0.
bool GetServerPresetNamesListToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t**& names,
                                   int& count);
// The sets of the preset of that name; of the record's first one when the name is empty. A value that begins
// with the letters of a byte-order mark has its marks back.
bool GetServerPresetDataByNameToSDM(std::wstring_view text, const ModuleMemory& memory,
                                    std::wstring_view name, SDMKeyValueList*& jobValues,
                                    SDMKeyValueList*& tesselValues, SDMKeyValueList*& presetValues);
// The presets of this computer, as they were sent: every "EFBBBF" is a byte-order mark again.
bool GetLocalPresetsDataToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out);

bool GetCalibrationToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& calibrations,
                         wchar_t*& current);
bool UpdateQuillformMastersToSDM(std::wstring_view text, const ModuleMemory& memory, wchar_t*& out);

// What an administrator's template sets, locks and hides, each in the order of its keys; a list may have no
// entries. False without the template's part for the user interface. Shows what it finds on the standard
// error stream.
bool GetDMTOverridesToSDM(std::wstring_view xml, const ModuleMemory& memory, SDMKeyValueList*& jobValues,
                          SDMKeyValueList*& readOnlyKeys, SDMKeyValueList*& veiledKeys);

// The keys of the calibration record.
inline constexpr std::wstring_view calibrationsKey = L"Calibrations";
inline constexpr std::wstring_view currentCalibrationKey = L"CurrentCalibration";

} // namespace torka
