// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// Converts wide text from and into narrow fields of a fixed size, without an intermediate copy.

namespace torka {

// The number of bytes of a UTF-8 text that fit `size` bytes without cutting a character.
std::size_t wholeCharacters(std::string_view text, std::size_t size);

// Appends to a field of a fixed size and never writes past its end. After the first piece that does not fit
// whole, it takes nothing more.
class FieldWriter {
public:
    explicit FieldWriter(std::span<char> target)
        : field(target) {}
    bool IsFull() const { return full; }
    // Appends one character. Surrogates and values above U+10FFFF become U+FFFD.
    void Append(char32_t character) {
        if (character < 0x80 && !full && used < field.size()) {
            field[used++] = static_cast<char>(character);
        } else {
            AppendEncoded(character);
        }
    }
    void Append(std::string_view piece);
    // Appends the ASCII characters at the start of the text, as many as fit. Returns their number.
    std::size_t AppendAscii(const wchar_t* text);
    // Zeroes the rest of the field.
    void Finish();

private:
    void AppendEncoded(char32_t character);

    std::span<char> field;
    std::size_t used = 0;
    bool full = false;
};

// Writes as many characters of a UTF-8 text into `out` as fit, and returns their number. A text never has
// more characters than bytes. Invalid bytes become U+FFFD.
std::size_t widenInto(std::span<wchar_t> out, std::string_view text);

} // namespace torka
