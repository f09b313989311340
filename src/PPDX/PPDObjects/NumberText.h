// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace torka {

// Formats numbers for texts that leave the model, always in the C locale.

// A number in its own buffer: "%ld", or "%.<decimals>f" padded with leading blanks to `width`. Decimals: 0 to
// 9.
class NumberText {
public:
    explicit NumberText(long value);
    NumberText(float value, int decimals, std::size_t width = 0);
    std::string_view View() const { return {buffer.data() + start, length}; }
    // Returns the text with a terminator.
    const char* Text() const { return buffer.data() + start; }

private:
    std::array<char, 80> buffer{};
    std::size_t start = 0;
    std::size_t length = 0;
};

// Returns the nearest finite float; 0 for NaN.
float nearestFloat(double value);

// Appends two upper-case hexadecimal digits for each byte.
void appendHex(std::string_view bytes, std::string& out);

} // namespace torka
