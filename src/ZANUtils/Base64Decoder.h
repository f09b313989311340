#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torka {

// Base64 text that comes in pieces. Characters outside the standard alphabet are skipped; "=" ends the text
// for good.
class Base64Decoder {
public:
    // Bytes that `length` more characters can give at most, whatever came before.
    static constexpr std::size_t MaximumLength(std::size_t length) { return (length / 4 + 1) * 3; }

    // Decodes `length` characters and gives the number of bytes written. A group that is not complete waits
    // for the next call; at "=" its whole bytes are written. After the end every call gives 0. Bytes that
    // `out` cannot hold are dropped.
    std::size_t Decode(const char* text, std::size_t length, std::span<std::uint8_t> out);

private:
    std::uint32_t accumulator = 0; // 24 bits: the characters of the current group
    int count = 0;                 // characters in it, 0 to 3
    bool endSeen = false;
};

// The six bits of a character of the standard alphabet, -1 for any other.
int base64Value(char character);

} // namespace torka
