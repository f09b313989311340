// SPDX-License-Identifier: Apache-2.0
#include "apps/common/OutsideText.h"

#include <array>

namespace torka::apps {

namespace {

constexpr std::string_view digits = "0123456789abcdef";

struct Character {
    char32_t point = 0;
    std::size_t bytes = 1;
    bool isValid = false;
};

// Decodes the first character of a text that is not empty (RFC 3629). An invalid sequence counts as one byte.
Character firstCharacter(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        return {first, 1, true};
    }
    const std::size_t bytes = first >= 0xf0 ? 4 : (first >= 0xe0 ? 3 : 2);
    if (first < 0xc2 || first > 0xf4 || text.size() < bytes) {
        return {};
    }
    char32_t point = first & (0xffU >> (bytes + 1));
    for (std::size_t i = 1; i < bytes; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xc0U) != 0x80U) {
            return {};
        }
        point = (point << 6U) | (next & 0x3fU);
    }
    constexpr std::array<char32_t, 5> smallest{0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = point >= 0xd800 && point <= 0xdfff;
    return {point, bytes, point >= smallest[bytes] && point <= 0x10ffff && !isSurrogate};
}

bool isControl(char32_t point) {
    return point < 0x20 || (point >= 0x7f && point <= 0x9f) || // C0, DEL, C1
           (point >= 0x2028 && point <= 0x202e) ||             // separators, embeddings and overrides
           (point >= 0x2066 && point <= 0x2069);               // isolates
}

} // namespace

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        if (!character.isValid) {
            return false;
        }
        text.remove_prefix(character.bytes);
    }
    return true;
}

std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::size_t bytes = character.isValid ? character.bytes : 1;
        if (character.isValid && !isControl(character.point)) {
            result += text.substr(0, bytes);
        } else {
            for (const char c : text.substr(0, bytes)) {
                const auto value = static_cast<unsigned char>(c);
                result += {'\\', 'x', digits[value >> 4U], digits[value & 15U]};
            }
        }
        text.remove_prefix(bytes);
    }
    return result;
}

std::string printableJson(std::string_view json) {
    std::string result;
    result.reserve(json.size());
    while (!json.empty()) {
        const Character character = firstCharacter(json);
        const std::size_t bytes = character.isValid ? character.bytes : 1;
        const char32_t point = character.point;
        if (character.isValid && point >= 0x7f && isControl(point)) {
            result += {'\\',
                       'u',
                       digits[(point >> 12U) & 15U],
                       digits[(point >> 8U) & 15U],
                       digits[(point >> 4U) & 15U],
                       digits[point & 15U]};
        } else {
            result += json.substr(0, bytes);
        }
        json.remove_prefix(bytes);
    }
    return result;
}

} // namespace torka::apps
