// SPDX-License-Identifier: Apache-2.0
#include "platform/icu/NonLossyAscii.h"

#include <charconv>

namespace torka::platform {

namespace {

// Reads exactly `count` digits of `base` at the front of `text`; nullopt when they are missing.
std::optional<unsigned> readDigits(std::string_view text, std::size_t count, int base) {
    if (text.size() < count) {
        return std::nullopt;
    }
    unsigned value = 0;
    const char* end = text.data() + count;
    const auto result = std::from_chars(text.data(), end, value, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

struct Escape {
    char16_t unit;
    std::size_t length; // of the whole escape, including the backslash
};

// Reads the escape at the front of `text`. REQUIRES: `text` begins with a backslash.
std::optional<Escape> readEscape(std::string_view text) {
    if (text.size() < 2) {
        return std::nullopt;
    }
    if (text[1] == '\\') {
        return Escape{u'\\', 2};
    }
    if (text[1] == 'u' || text[1] == 'U') {
        const auto value = readDigits(text.substr(2), 4, 16);
        return value ? std::optional(Escape{static_cast<char16_t>(*value), 6}) : std::nullopt;
    }
    const auto value = readDigits(text.substr(1), 3, 8);
    return value && *value <= 0xFF ? std::optional(Escape{static_cast<char16_t>(*value), 4}) : std::nullopt;
}

} // namespace

std::optional<std::u16string> decodeNonLossyAscii(std::string_view bytes, bool lossy) {
    std::u16string units;
    units.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto byte = static_cast<unsigned char>(bytes.front());
        std::optional<Escape> read;
        if (byte == '\\') {
            read = readEscape(bytes);
        } else if (byte < 0x80) {
            read = Escape{byte, 1};
        }
        if (!read) {
            if (!lossy) {
                return std::nullopt;
            }
            read = Escape{u'\xFFFD', 1};
        }
        units += read->unit;
        bytes.remove_prefix(read->length);
    }
    return units;
}

std::string encodeNonLossyAscii(std::u16string_view text) {
    static constexpr char digits[] = "0123456789abcdef";
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t unit : text) {
        if (unit == u'\\') {
            bytes += "\\\\";
        } else if (unit < 0x80) {
            bytes += static_cast<char>(unit);
        } else if (unit <= 0xFF) {
            bytes += {'\\', digits[unit >> 6], digits[unit >> 3 & 7], digits[unit & 7]};
        } else {
            bytes += {'\\',
                      'u',
                      digits[unit >> 12],
                      digits[unit >> 8 & 15],
                      digits[unit >> 4 & 15],
                      digits[unit & 15]};
        }
    }
    return bytes;
}

} // namespace torka::platform
