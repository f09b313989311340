// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/given/Base64Decoder.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace torka {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

constexpr std::array<std::int8_t, 256> values = [] {
    std::array<std::int8_t, 256> table{};
    table.fill(-1);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int8_t>(i);
    }
    return table;
}();

} // namespace

int base64Value(char character) { return values[static_cast<unsigned char>(character)]; }

std::size_t Base64Decoder::Decode(const char* text, std::size_t length, std::span<std::uint8_t> out) {
    if (text == nullptr) {
        return 0;
    }
    std::size_t written = 0;
    // Writes the top bytes of the accumulator, as far as they fit.
    const auto flush = [&](int bytes) {
        for (int i = 0; i < bytes && written < out.size(); ++i) {
            out[written++] = static_cast<std::uint8_t>(accumulator >> (16 - 8 * i));
        }
        accumulator = 0;
        count = 0;
    };
    for (std::size_t i = 0; i < length && !endSeen; ++i) {
        if (text[i] == '=') {
            endSeen = true;
            flush(std::max(count - 1, 0));
            break;
        }
        const int value = base64Value(text[i]);
        if (value < 0) {
            continue;
        }
        accumulator |= static_cast<std::uint32_t>(value) << (18 - 6 * count);
        if (++count == 4) {
            flush(3);
        }
    }
    return written;
}

} // namespace torka
