#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace torka {

// Base64 (RFC 4648, standard alphabet, "=" padding). Has no state.
class Base64Encoder {
public:
    // Characters that Encode writes for `length` bytes.
    static std::size_t EncodedLength(std::size_t length, bool wrap);

    // Encodes `length` bytes and gives the number of characters written; no terminator follows. With `wrap`,
    // a line feed follows the group of four that makes the count of characters a multiple of 64, line feeds
    // counted in: only the first line is ever ended that way. An `out` that is too short gets nothing and 0
    // is given.
    std::size_t Encode(const std::uint8_t* in, std::size_t length, std::span<char> out, bool wrap) const;
};

} // namespace torka
