// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>

namespace torka {

// Cuts UTF-8 text to `size` bytes with its terminator, at the border of a character.
inline std::string cutText(std::string text, std::size_t size) {
    if (text.size() < size) {
        return text;
    }
    std::size_t end = size - 1;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    text.resize(end);
    return text;
}

} // namespace torka
