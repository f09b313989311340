// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torka {

// Encodes Base64 (RFC 4648, standard alphabet, "=" padding). Has no state.
class Base64Encoder {
public:
    // Returns the number of characters that Encode writes for `length` bytes.
    static std::size_t EncodedLength(std::size_t length, bool wrap);

    // Encodes `length` bytes and returns the number of characters written, without a terminator. With `wrap`,
    // a line feed follows the group of four at which the count of characters, line feeds included, is a
    // multiple of 64. Only the first line ends so. Writes nothing and returns 0 when `out` is too short.
    std::size_t Encode(const std::uint8_t* in, std::size_t length, std::span<char> out, bool wrap) const;
};

} // namespace torka
