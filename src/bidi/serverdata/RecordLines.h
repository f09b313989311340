#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

// Record texts of server data taken apart: lines, fields, numbers. All look at the text and copy nothing.

namespace torka {

using KeyValueView = std::pair<std::wstring_view, std::wstring_view>;

// Whether every unit is a character that wide text may hold: no NUL, no surrogate, nothing above U+10FFFF.
bool isProperWideText(std::wstring_view text);

// A number that is all of the text, in decimal with an optional minus sign; empty when it is not one or does
// not fit.
std::optional<std::int32_t> wholeNumber(std::wstring_view text);

// Goes through a text line by line. Lines are ended by LF.
class RecordLines {
public:
    explicit RecordLines(std::wstring_view text)
        : rest(text) {}
    bool AtEnd() const { return rest.empty(); }
    // The number of the line that was taken last, from 1.
    std::size_t LineNumber() const { return number; }
    // Whether that line had its LF: the last one of a text may lack it.
    bool IsEnded() const { return ended; }
    // The next line without its end; empty when there is none.
    std::optional<std::wstring_view> Next();
    // A line of "prefix" and the number of entries that follow. Empty as well when there are more than the
    // text has characters, so that a count never asks for memory that its text is not worth.
    std::optional<std::size_t> NextCount(std::wstring_view prefix = {});

private:
    std::wstring_view rest;
    std::size_t number = 0;
    bool ended = false;
};

// Goes through a line field by field; a separator stands between two of them, and an empty field is one.
class LineFields {
public:
    LineFields(std::wstring_view line, wchar_t separatorCharacter)
        : rest(line)
        , separator(separatorCharacter) {}
    // False behind the last field.
    bool Next(std::wstring_view& field);
    // False as well when the field is no number.
    bool Next(std::int32_t& number);
    bool AtEnd() const { return finished; }

private:
    std::wstring_view rest;
    wchar_t separator;
    bool finished = false;
};

// What stands before the first ":" of the first line that holds the key. Empty when there is no such line, or
// no ":" with the key right behind it in that line.
std::optional<std::wstring_view> valueBeforeKey(std::wstring_view text, std::wstring_view key);

} // namespace torka
