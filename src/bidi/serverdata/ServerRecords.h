// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/serverdata/RecordLines.h"
#include "platform/Result.h"

#include <array>
#include <string_view>
#include <vector>

// Parses the record texts of server data (formats: docs/two-way-records.md) without allocating for the
// module. The results are views of the text, which must outlive them.

namespace torka {

struct TonerView {
    std::wstring_view name;
    std::int32_t level = 0;
    std::int32_t lowLevel = 0;
    std::optional<std::wstring_view> color;
    std::int32_t highLevel = 0;
    std::int32_t capacity = 0;
    std::int32_t kind = 0;
};
// Whether the supply is low or, for a waste box, full. False when the level or its bound is unknown.
bool needsAttention(const TonerView& toner);

struct TrayView {
    // Name, key, media name, media size, media type, media color.
    std::array<std::optional<std::wstring_view>, 6> texts;
    std::int32_t level = 0;
    std::int32_t capacity = 0;
};

// The text before the count of each of a preset's three sets.
inline constexpr std::array<std::wstring_view, 3> presetSets = {L"JPKeyValues=", L"TesselKeyValues=",
                                                                L"PresetKeyValues="};
struct PresetView {
    std::wstring_view name;
    std::array<std::vector<KeyValueView>, presetSets.size()> sets;
};

// Placeholders for missing values.
inline constexpr std::wstring_view absentTonerText = L"NULL";
inline constexpr std::wstring_view absentTrayText = L"EMPTY";
inline constexpr std::wstring_view emptyDefault = L"EMPTYSTRING";

// Each function checks the characters of a record text and then reads it in one pass. Fails, with the first
// fault and its place ("line 3"), when the text is empty, holds an invalid character, or is incomplete.
template <typename Entry>
using RecordResult = Result<std::vector<Entry>>;
RecordResult<TonerView> readToners(std::wstring_view text);
RecordResult<TrayView> readTrays(std::wstring_view text);
RecordResult<std::wstring_view> readPresetNames(std::wstring_view text);
// A record may hold several presets, one behind the other.
RecordResult<PresetView> readPresets(std::wstring_view text);
// A key/value set has one pair a line: key, "=", value. Empty lines are skipped.
RecordResult<KeyValueView> readKeyValueSet(std::wstring_view text);
// Server information has one pair a line: value, ":", key. The value ends at the first ":".
RecordResult<KeyValueView> readServerInfo(std::wstring_view text);

} // namespace torka
