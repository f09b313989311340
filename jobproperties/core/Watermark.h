// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <string_view>

// One watermark in the form of its definition: 14 comma-separated fields and the text after them
// (docs/watermarks.md).

namespace torka::jobproperties {

struct Watermark {
    bool clear = false; // printed with the transparent separation instead of a colour
    int right = 0;      // points from the page's centre
    int up = 0;
    std::array<int, 3> color{128, 128, 128}; // red, green, blue, 0 to 255
    bool firstPageOnly = false;
    int angle = 450; // tenths of a degree, counter-clockwise
    int size = 72;   // points
    std::string font = "Helvetica-Bold";
    std::string text; // UTF-8

    // Reads numbers up to the first character that is not part of one and clamps them. A missing field is 0.
    static Watermark FromDefinition(std::string_view definition);
    // Removes commas, and characters that a PostScript name cannot hold, from the font. Line ends in the text
    // become blanks.
    std::string Definition() const;

    bool operator==(const Watermark&) const = default;

private:
    std::array<std::string, 4> unused; // fields 7, 9, 11 and 12, preserved
};

} // namespace torka::jobproperties
