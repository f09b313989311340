#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::tool {

// How many columns of a terminal a UTF-8 text takes: two for East Asian wide characters and pictures, none
// for marks that combine with the character before them.
std::size_t displayWidth(std::string_view text);

// Rows in columns that are as wide as their widest cell. Control characters are made visible.
class TextTable {
public:
    explicit TextTable(std::vector<std::string> headings);
    // A number stands at the right of its column; so does the column's heading then.
    void AlignRight(std::size_t column);
    // As many cells as there are headings.
    void Add(std::vector<std::string> cells);
    // A line for the headings and one for each row, with two blanks before and between the columns.
    std::string Text() const;

private:
    std::string Line(const std::vector<std::string>& cells, const std::vector<std::size_t>& widths) const;

    std::vector<std::vector<std::string>> rows; // the first holds the headings
    std::vector<bool> atRight;
};

} // namespace torka::tool
