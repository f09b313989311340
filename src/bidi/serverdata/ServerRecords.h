#pragma once

#include "bidi/serverdata/RecordLines.h"

#include <array>
#include <string_view>
#include <vector>

// The records of server data as their texts tell them (docs/two-way-records.md has the formats), before
// anything is allocated for the module. What is read are views of the text, which must outlive them.

namespace torka {

// Why a record text is refused.
struct RecordFault {
    std::size_t line = 0; // from 1
    std::string_view reason;
};

struct TonerView {
    std::wstring_view name;
    std::int32_t level = 0;
    std::int32_t lowLevel = 0;
    std::optional<std::wstring_view> color;
    std::int32_t highLevel = 0;
    std::int32_t capacity = 0;
    std::int32_t kind = 0;
};
// Low or, of a waste box, full. Not where the level or its bound is not known.
bool needsAttention(const TonerView& toner);

struct TrayView {
    // Name, key, media name, media size, media type, media color.
    std::array<std::optional<std::wstring_view>, 6> texts;
    std::int32_t level = 0;
    std::int32_t capacity = 0;
};

// The three sets of a preset, and what stands before the count of each.
inline constexpr std::array<std::wstring_view, 3> presetSets = {L"JPKeyValues=", L"TesselKeyValues=",
                                                                L"PresetKeyValues="};
struct PresetView {
    std::wstring_view name;
    std::array<std::vector<KeyValueView>, presetSets.size()> sets;
};

// Placeholders.
inline constexpr std::wstring_view absentTonerText = L"NULL";
inline constexpr std::wstring_view absentTrayText = L"EMPTY";
inline constexpr std::wstring_view emptyDefault = L"EMPTYSTRING";

// Each reads a record text in one pass behind a look at its characters. False, with the first fault told,
// when the text is empty, holds what is no character, or is not whole.
bool readToners(std::wstring_view text, std::vector<TonerView>& toners, RecordFault& fault);
bool readTrays(std::wstring_view text, std::vector<TrayView>& trays, RecordFault& fault);
bool readPresetNames(std::wstring_view text, std::vector<std::wstring_view>& names, RecordFault& fault);
// A record may hold several presets, one after the other.
bool readPresets(std::wstring_view text, std::vector<PresetView>& presets, RecordFault& fault);
// A key/value set, a pair a line: key, "=", value. Empty lines are passed over.
bool readKeyValueSet(std::wstring_view text, std::vector<KeyValueView>& pairs, RecordFault& fault);
// Server information, a pair a line the other way round: value, ":", key. The value ends at the first ":".
bool readServerInfo(std::wstring_view text, std::vector<KeyValueView>& pairs, RecordFault& fault);

} // namespace torka
