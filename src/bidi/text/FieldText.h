#pragma once

#include <cstddef>
#include <span>
#include <string_view>

// Wide text from and into narrow fields of a fixed size, without a copy between.

namespace torka {

// How much of a UTF-8 text fits `size` bytes without its last character being cut.
std::size_t wholeCharacters(std::string_view text, std::size_t size);

// Appends to a field of a fixed size, which it never passes; once a piece does not fit whole nothing more is
// taken.
class FieldWriter {
public:
    explicit FieldWriter(std::span<char> target)
        : field(target) {}
    bool IsFull() const { return full; }
    // One character; what no text may hold (surrogates, values above U+10FFFF) becomes U+FFFD.
    void Append(char32_t character) {
        if (character < 0x80 && !full && used < field.size()) {
            field[used++] = static_cast<char>(character);
        } else {
            AppendEncoded(character);
        }
    }
    void Append(std::string_view piece);
    // Zeroes what is left.
    void Finish();

private:
    void AppendEncoded(char32_t character);

    std::span<char> field;
    std::size_t used = 0;
    bool full = false;
};

// Writes the characters of a UTF-8 text into `out`, as many as have room: how many there are. A text has no
// more characters than bytes; bytes that are not UTF-8 become U+FFFD.
std::size_t widenInto(std::span<wchar_t> out, std::string_view text);

} // namespace torka
