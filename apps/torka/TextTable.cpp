// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/TextTable.h"

#include "apps/torka/Command.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>

namespace torka::tool {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

// East_Asian_Width W and F of UAX #11, by blocks.
constexpr std::array<Range, 12> wide = {{{0x1100, 0x115F},
                                         {0x2E80, 0x303E},
                                         {0x3041, 0xA4CF},
                                         {0xA960, 0xA97F},
                                         {0xAC00, 0xD7A3},
                                         {0xF900, 0xFAFF},
                                         {0xFE30, 0xFE6F},
                                         {0xFF00, 0xFF60},
                                         {0xFFE0, 0xFFE6},
                                         {0x1F300, 0x1F64F},
                                         {0x1F680, 0x1FAFF},
                                         {0x20000, 0x3FFFD}}};
// Combining marks, joiners and variation selectors.
constexpr std::array<Range, 7> zero = {{{0x0300, 0x036F},
                                        {0x0483, 0x0489},
                                        {0x1AB0, 0x1AFF},
                                        {0x200B, 0x200F},
                                        {0x20D0, 0x20FF},
                                        {0xFE00, 0xFE0F},
                                        {0xFE20, 0xFE2F}}};

template <std::size_t Count>
bool contains(const std::array<Range, Count>& ranges, char32_t point) {
    return std::any_of(ranges.begin(), ranges.end(),
                       [point](const Range& range) { return point >= range.first && point <= range.last; });
}

} // namespace

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (const wchar_t unit : platform::wideFromUtf8(text)) {
        const auto point = static_cast<char32_t>(unit);
        width += contains(zero, point) ? 0U : (contains(wide, point) ? 2U : 1U);
    }
    return width;
}

TextTable::TextTable(std::vector<std::string> headings)
    : atRight(headings.size()) {
    rows.push_back(std::move(headings));
}

void TextTable::AlignRight(std::size_t column) { atRight[column] = true; }

void TextTable::Add(std::vector<std::string> cells) {
    for (std::string& cell : cells) {
        cell = printable(cell);
    }
    rows.push_back(std::move(cells));
}

std::string TextTable::Text() const {
    std::vector<std::size_t> widths(atRight.size());
    for (const std::vector<std::string>& row : rows) {
        for (std::size_t i = 0; i < widths.size(); ++i) {
            widths[i] = std::max(widths[i], displayWidth(row[i]));
        }
    }
    std::string text;
    for (const std::vector<std::string>& row : rows) {
        text += Line(row, widths);
    }
    return text;
}

std::string TextTable::Line(const std::vector<std::string>& cells,
                            const std::vector<std::size_t>& widths) const {
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i) {
        const std::string blanks(widths[i] - displayWidth(cells[i]), ' ');
        line += "  " + (atRight[i] ? blanks + cells[i] : cells[i] + blanks);
    }
    return line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
}

} // namespace torka::tool
