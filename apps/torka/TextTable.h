// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::tool {

// The number of terminal columns that a UTF-8 text takes: two for an East Asian wide character or a
// pictograph, none for a combining mark.
std::size_t displayWidth(std::string_view text);

// Formats rows into columns, each as wide as its widest cell. Shows control characters as \xNN.
class TextTable {
public:
    explicit TextTable(std::vector<std::string> headings);
    // Aligns a column of numbers and its heading to the right.
    void AlignRight(std::size_t column);
    // Adds a row. REQUIRES: as many cells as there are headings.
    void Add(std::vector<std::string> cells);
    // One line for the headings and one for each row, with two blanks before each column.
    std::string Text() const;

private:
    std::string Line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const;

    std::vector<std::vector<std::string>> rows; // the first holds the headings
    std::vector<bool> atRight;
};

} // namespace torka::tool
