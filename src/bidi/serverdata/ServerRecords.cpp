// SPDX-License-Identifier: Apache-2.0
#include "bidi/serverdata/ServerRecords.h"

#include "bidi/JobPropertiesModule.h"

#include <algorithm>

namespace torka {

namespace {

constexpr const char* missingLines = "fewer lines than the count says";
constexpr const char* surplusLines = "more lines than the count says";

Fault faultIn(std::size_t line, const char* what) { return {what, "line " + std::to_string(line)}; }

// The checks for every text: not empty, and valid characters only.
Result<void> checkText(std::wstring_view text) {
    if (text.empty()) {
        return faultIn(1, "the record is empty");
    }
    return isProperWideText(text) ? Result<void>()
                                  : faultIn(1, "the record holds units that are no characters");
}

// The count at the start of a text.
Result<std::size_t> countOf(std::wstring_view text, RecordLines& lines) {
    if (const Result<void> checked = checkText(text); !checked) {
        return checked.Why();
    }
    const std::optional<std::size_t> count = lines.NextCount();
    return count ? Result<std::size_t>(*count)
                 : faultIn(1, "a count that fits the lines behind it is expected");
}

// Reads a count and as many lines. Every line must end in LF: otherwise a cut number would pass as a shorter
// one.
template <typename Entry>
RecordResult<Entry> readCounted(std::wstring_view text, const char* expected,
                                bool (*readEntry)(std::wstring_view, Entry&)) {
    RecordLines lines(text);
    const Result<std::size_t> count = countOf(text, lines);
    if (!count) {
        return count.Why();
    }
    std::vector<Entry> entries;
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        if (entries.size() == *count) {
            return faultIn(lines.LineNumber(), surplusLines);
        }
        if (!lines.IsEnded()) {
            return faultIn(lines.LineNumber(), "the line has no end");
        }
        if (!readEntry(*line, entries.emplace_back())) {
            return faultIn(lines.LineNumber(), expected);
        }
    }
    if (entries.size() < *count) {
        return faultIn(lines.LineNumber() + 1, missingLines);
    }
    return entries;
}

bool readToner(std::wstring_view line, TonerView& toner) {
    LineFields fields(line, L'@');
    std::wstring_view color;
    if (!fields.Next(toner.name) || !fields.Next(toner.level) || !fields.Next(toner.lowLevel) ||
        !fields.Next(color) || !fields.Next(toner.highLevel) || !fields.Next(toner.capacity) ||
        !fields.Next(toner.kind)) {
        return false;
    }
    if (color != absentTonerText) {
        toner.color = color;
    }
    return fields.AtEnd();
}

bool isTrayPlaceholder(std::wstring_view field) {
    return field == absentTrayText || field == L"N/A" || field == L"0";
}

// Reads a number, or a placeholder for an unknown one.
bool readTrayNumber(LineFields& fields, std::int32_t& number) {
    std::wstring_view field;
    if (!fields.Next(field)) {
        return false;
    }
    const std::optional<std::int32_t> value = wholeNumber(field);
    number = value.value_or(SDM_LEVEL_UNKNOWN);
    return value || isTrayPlaceholder(field);
}

bool readTray(std::wstring_view line, TrayView& tray) {
    LineFields fields(line, L'@');
    for (std::optional<std::wstring_view>& text : tray.texts) {
        std::wstring_view field;
        if (!fields.Next(field)) {
            return false;
        }
        if (!isTrayPlaceholder(field)) {
            text = field;
        }
    }
    return readTrayNumber(fields, tray.level) && readTrayNumber(fields, tray.capacity) && fields.AtEnd();
}

bool readPair(std::wstring_view line, KeyValueView& pair) {
    const std::size_t place = line.find(L'=');
    if (place == 0 || place == std::wstring_view::npos) {
        return false;
    }
    pair = {line.substr(0, place), line.substr(place + 1)};
    return true;
}

RecordResult<KeyValueView> readPresetSet(RecordLines& lines, std::wstring_view prefix) {
    const std::optional<std::size_t> count = lines.NextCount(prefix);
    if (!count || !lines.IsEnded()) {
        return faultIn(lines.LineNumber(), "the count of a preset's set is expected");
    }
    std::vector<KeyValueView> pairs;
    while (pairs.size() < *count) {
        const std::optional<std::wstring_view> line = lines.Next();
        if (!line || !lines.IsEnded() || !readPair(*line, pairs.emplace_back())) {
            return faultIn(lines.LineNumber(),
                           "a key, \"=\" and a value are expected, on a line with its end");
        }
    }
    return pairs;
}

RecordResult<KeyValueView> readPairs(std::wstring_view text, const char* expected,
                                     bool (*readLine)(std::wstring_view, KeyValueView&)) {
    if (const Result<void> checked = checkText(text); !checked) {
        return checked.Why();
    }
    RecordLines lines(text);
    std::vector<KeyValueView> pairs;
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        if (!line->empty() && !readLine(*line, pairs.emplace_back())) {
            return faultIn(lines.LineNumber(), expected);
        }
    }
    return pairs;
}

} // namespace

bool needsAttention(const TonerView& toner) {
    const bool isWaste = toner.kind == SDM_SUPPLY_WASTE;
    const std::int32_t bound = isWaste ? toner.highLevel : toner.lowLevel;
    return toner.level >= 0 && bound >= 0 && (isWaste ? toner.level >= bound : toner.level <= bound);
}

RecordResult<TonerView> readToners(std::wstring_view text) {
    return readCounted<TonerView>(
        text, "a toner's seven fields are expected (name@number@number@text@number@number@number)",
        readToner);
}

RecordResult<TrayView> readTrays(std::wstring_view text) {
    return readCounted<TrayView>(text, "a tray's eight fields are expected (six texts, two numbers)",
                                 readTray);
}

RecordResult<std::wstring_view> readPresetNames(std::wstring_view text) {
    RecordLines lines(text);
    const Result<std::size_t> count = countOf(text, lines);
    if (!count) {
        return count.Why();
    }
    std::vector<std::wstring_view> names;
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        if (!line->empty()) {
            names.push_back(*line);
        }
    }
    if (names.size() != *count) {
        return faultIn(lines.LineNumber(), names.size() < *count ? missingLines : surplusLines);
    }
    return names;
}

RecordResult<PresetView> readPresets(std::wstring_view text) {
    if (const Result<void> checked = checkText(text); !checked) {
        return checked.Why();
    }
    RecordLines lines(text);
    std::vector<PresetView> presets;
    while (const std::optional<std::wstring_view> name = lines.Next()) {
        PresetView& preset = presets.emplace_back();
        preset.name = *name;
        for (std::size_t i = 0; i < presetSets.size(); ++i) {
            RecordResult<KeyValueView> set = readPresetSet(lines, presetSets[i]);
            if (!set) {
                return set.Why();
            }
            preset.sets[i] = *std::move(set);
        }
    }
    return presets;
}

RecordResult<KeyValueView> readKeyValueSet(std::wstring_view text) {
    return readPairs(text, "a key, \"=\" and a value are expected", readPair);
}

RecordResult<KeyValueView> readServerInfo(std::wstring_view text) {
    return readPairs(text, "a value, \":\" and a key are expected",
                     [](std::wstring_view line, KeyValueView& pair) {
                         const std::size_t place = line.find(L':');
                         if (place == std::wstring_view::npos || place + 1 == line.size()) {
                             return false;
                         }
                         pair = {line.substr(place + 1), line.substr(0, place)};
                         return true;
                     });
}

} // namespace torka
