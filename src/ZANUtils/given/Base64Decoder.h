// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torka {

// Decodes Base64 text in pieces. Skips characters outside the standard alphabet. "=" ends the text
// permanently.
class Base64Decoder {
public:
    // Returns the maximum number of bytes for `length` further characters, in any state.
    static constexpr std::size_t MaximumLength(std::size_t length) { return (length / 4 + 1) * 3; }

    // Decodes `length` characters and returns the number of bytes written. An incomplete group waits for the
    // next call; "=" writes its whole bytes. After the end every call returns 0. Bytes that `out` cannot hold
    // are dropped.
    std::size_t Decode(const char* text, std::size_t length, std::span<std::uint8_t> out);

private:
    std::uint32_t accumulator = 0; // 24 bits: the characters of the current group
    int count = 0;                 // characters in it, 0 to 3
    bool endSeen = false;
};

// Returns the six bits of a character of the standard alphabet, -1 for any other.
int base64Value(char character);

} // namespace torka
