#pragma once

#include <array>
#include <string>
#include <string_view>

namespace torka {

// Numbers as the texts that leave the model, always in the C locale.

// A number in an own buffer: "%ld", or "%.<decimals>f" padded with leading blanks to `width`. Decimals: 0
// to 9.
class NumberText {
public:
    explicit NumberText(long value);
    NumberText(float value, int decimals, std::size_t width = 0);
    std::string_view View() const { return {buffer.data() + start, length}; }
    // With a terminator.
    const char* Text() const { return buffer.data() + start; }

private:
    std::array<char, 80> buffer{};
    std::size_t start = 0;
    std::size_t length = 0;
};

// The nearest float, held to the finite ones; 0 for what is no number.
float nearestFloat(double value);

// Two upper-case hexadecimal digits for each byte.
void appendHex(std::string_view bytes, std::string& out);

} // namespace torka
