#include "bidi/serverdata/ServerRecords.h"

#include "bidi/JobPropertiesModule.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::string_view countFault = "a count that fits the lines behind it is expected";
constexpr std::string_view missingFault = "fewer lines than the count says";
constexpr std::string_view surplusFault = "more lines than the count says";
constexpr std::string_view cutFault = "the line has no end";

// The checks for every text: not empty, and valid characters only.
bool isReadable(std::wstring_view text, RecordFault& fault) {
    if (text.empty()) {
        fault = {1, "the record is empty"};
        return false;
    }
    if (!isProperWideText(text)) {
        fault = {1, "the record holds units that are no characters"};
        return false;
    }
    return true;
}

// The count at the start of a text. nullopt, with the fault, when the count is missing or the text holds an
// invalid character.
std::optional<std::size_t> countOf(std::wstring_view text, RecordLines& lines, RecordFault& fault) {
    if (!isReadable(text, fault)) {
        return std::nullopt;
    }
    const std::optional<std::size_t> count = lines.NextCount();
    if (!count) {
        fault = {1, countFault};
    }
    return count;
}

// Reads a count and as many lines. Every line must end in LF: otherwise a cut number would pass as a shorter
// one.
template <typename Entry, typename ReadEntry>
bool readCounted(std::wstring_view text, std::vector<Entry>& entries, RecordFault& fault,
                 std::string_view entryFault, ReadEntry readEntry) {
    entries.clear();
    RecordLines lines(text);
    const std::optional<std::size_t> count = countOf(text, lines, fault);
    if (!count) {
        return false;
    }
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        Entry entry;
        const bool isSurplus = entries.size() == *count;
        if (isSurplus || !lines.IsEnded() || !readEntry(*line, entry)) {
            fault = {lines.LineNumber(),
                     isSurplus ? surplusFault : (lines.IsEnded() ? entryFault : cutFault)};
            return false;
        }
        entries.push_back(entry);
    }
    if (entries.size() < *count) {
        fault = {lines.LineNumber() + 1, missingFault};
        return false;
    }
    return true;
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

bool readPresetSet(RecordLines& lines, std::wstring_view prefix, std::vector<KeyValueView>& pairs,
                   RecordFault& fault) {
    const std::optional<std::size_t> count = lines.NextCount(prefix);
    if (!count || !lines.IsEnded()) {
        fault = {lines.LineNumber(), "the count of a preset's set is expected"};
        return false;
    }
    while (pairs.size() < *count) {
        const std::optional<std::wstring_view> line = lines.Next();
        KeyValueView pair;
        if (!line || !lines.IsEnded() || !readPair(*line, pair)) {
            fault = {lines.LineNumber(), "a key, \"=\" and a value are expected, on a line with its end"};
            return false;
        }
        pairs.push_back(pair);
    }
    return true;
}

template <typename ReadLine>
bool readPairs(std::wstring_view text, std::vector<KeyValueView>& pairs, RecordFault& fault,
               std::string_view lineFault, ReadLine readLine) {
    pairs.clear();
    if (!isReadable(text, fault)) {
        return false;
    }
    RecordLines lines(text);
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        KeyValueView pair;
        if (line->empty()) {
            continue;
        }
        if (!readLine(*line, pair)) {
            fault = {lines.LineNumber(), lineFault};
            return false;
        }
        pairs.push_back(pair);
    }
    return true;
}

} // namespace

bool needsAttention(const TonerView& toner) {
    const bool isWaste = toner.kind == SDM_SUPPLY_WASTE;
    const std::int32_t bound = isWaste ? toner.highLevel : toner.lowLevel;
    return toner.level >= 0 && bound >= 0 && (isWaste ? toner.level >= bound : toner.level <= bound);
}

bool readToners(std::wstring_view text, std::vector<TonerView>& toners, RecordFault& fault) {
    return readCounted(text, toners, fault,
                       "a toner's seven fields are expected (name@number@number@text@number@number@number)",
                       readToner);
}

bool readTrays(std::wstring_view text, std::vector<TrayView>& trays, RecordFault& fault) {
    return readCounted(text, trays, fault, "a tray's eight fields are expected (six texts, two numbers)",
                       readTray);
}

bool readPresetNames(std::wstring_view text, std::vector<std::wstring_view>& names, RecordFault& fault) {
    names.clear();
    RecordLines lines(text);
    const std::optional<std::size_t> count = countOf(text, lines, fault);
    if (!count) {
        return false;
    }
    while (const std::optional<std::wstring_view> line = lines.Next()) {
        if (!line->empty()) {
            names.push_back(*line);
        }
    }
    if (names.size() != *count) {
        fault = {lines.LineNumber(), names.size() < *count ? missingFault : surplusFault};
        return false;
    }
    return true;
}

bool readPresets(std::wstring_view text, std::vector<PresetView>& presets, RecordFault& fault) {
    presets.clear();
    if (!isReadable(text, fault)) {
        return false;
    }
    RecordLines lines(text);
    while (const std::optional<std::wstring_view> name = lines.Next()) {
        PresetView preset;
        preset.name = *name;
        for (std::size_t i = 0; i < presetSets.size(); ++i) {
            if (!readPresetSet(lines, presetSets[i], preset.sets[i], fault)) {
                return false;
            }
        }
        presets.push_back(std::move(preset));
    }
    return true;
}

bool readKeyValueSet(std::wstring_view text, std::vector<KeyValueView>& pairs, RecordFault& fault) {
    return readPairs(text, pairs, fault, "a key, \"=\" and a value are expected", readPair);
}

bool readServerInfo(std::wstring_view text, std::vector<KeyValueView>& pairs, RecordFault& fault) {
    return readPairs(text, pairs, fault, "a value, \":\" and a key are expected",
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
