// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace torka {

NumberText::NumberText(long value) {
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size() - 1, value).ptr;
    length = static_cast<std::size_t>(end - buffer.data());
}

NumberText::NumberText(float value, int decimals, std::size_t width) {
    // The widest float has 39 digits before the point and a sign.
    constexpr std::size_t room = 16;
    std::fill_n(buffer.data(), room, ' ');
    char* const first = buffer.data() + room;
    const auto end = std::to_chars(first, buffer.data() + buffer.size() - 1, static_cast<double>(value),
                                   std::chars_format::fixed, std::clamp(decimals, 0, 9))
                         .ptr;
    length = static_cast<std::size_t>(end - first);
    start = room;
    if (length < width) {
        const std::size_t padding = std::min(width - length, room);
        start -= padding;
        length += padding;
    }
}

float nearestFloat(double value) {
    if (std::isnan(value)) {
        return 0;
    }
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -largest, largest));
}

void appendHex(std::string_view bytes, std::string& out) {
    constexpr char digits[] = "0123456789ABCDEF";
    out.reserve(out.size() + 2 * bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        out.push_back(digits[byte >> 4]);
        out.push_back(digits[byte & 15]);
    }
}

} // namespace torka
