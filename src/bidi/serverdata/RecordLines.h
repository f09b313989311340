// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

// Splits record texts of server data into lines, fields and numbers. Results are views of the text; nothing
// is copied.

namespace torka {

using KeyValueView = std::pair<std::wstring_view, std::wstring_view>;

// Whether every unit is a valid character: no NUL, no surrogate, nothing above U+10FFFF.
bool isProperWideText(std::wstring_view text);

// The whole text as a decimal number with an optional minus sign. nullopt when it is no number or does not
// fit.
std::optional<std::int32_t> wholeNumber(std::wstring_view text);

// Iterates over the lines of a text. Lines end in LF.
class RecordLines {
public:
    explicit RecordLines(std::wstring_view text)
        : rest(text) {}
    // The number of the last line that Next returned, from 1.
    std::size_t LineNumber() const { return number; }
    // Whether that line had an LF. The last line of a text may lack it.
    bool IsEnded() const { return ended; }
    // The next line without its LF; nullopt behind the last line.
    std::optional<std::wstring_view> Next();
    // Reads a line of "prefix" and the number of entries that follow. Also nullopt when the number is greater
    // than the number of characters in the text: this limits the memory that a wrong count can request.
    std::optional<std::size_t> NextCount(std::wstring_view prefix = {});

private:
    std::wstring_view rest;
    std::size_t number = 0;
    bool ended = false;
};

// Iterates over the fields of a line. A separator stands between two fields. Empty fields count.
class LineFields {
public:
    LineFields(std::wstring_view line, wchar_t separatorCharacter)
        : rest(line)
        , separator(separatorCharacter) {}
    // False behind the last field.
    bool Next(std::wstring_view& field);
    // Also false when the field is no number.
    bool Next(std::int32_t& number);
    bool AtEnd() const { return finished; }

private:
    std::wstring_view rest;
    wchar_t separator;
    bool finished = false;
};

// The text before the first ":" of the first line that holds the key. nullopt when no line holds the key, or
// when the key does not follow a ":" directly in that line.
std::optional<std::wstring_view> valueBeforeKey(std::wstring_view text, std::wstring_view key);

} // namespace torka
