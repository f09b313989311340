// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/QVCFBase64.h"

#include "ZANUtils/Base64Encoder.h"
#include "ZANUtils/given/Base64Decoder.h"

#include <algorithm>
#include <string>
#include <vector>

namespace torka {

CFStringRef QVCFBase64CreateEncodedString(const CFDataRef& data) {
    const auto bytes = CFDataGetBytes(data);
    std::string text(Base64Encoder::EncodedLength(bytes.size(), false), '\0');
    Base64Encoder().Encode(bytes.data(), bytes.size(), text, false);
    return CFStringCreateWithCharacters(std::u16string(text.begin(), text.end()));
}

CFDataRef QVCFBase64CreateDecodedData(const CFStringRef& text) {
    constexpr std::size_t shortestText = 4;
    if (!text || text->units.size() < shortestText) {
        return CFDataCreate(nullptr, 0);
    }
    std::u16string_view units = text->units;
    for (int i = 0; i < 2 && units.back() == u'='; ++i) {
        units.remove_suffix(1);
    }
    // Replaces characters outside the alphabet, so that the decoder neither skips one nor stops.
    std::string characters(units.size(), 'A');
    std::transform(units.begin(), units.end(), characters.begin(), [](char16_t unit) {
        const char character = unit < 0x80 ? static_cast<char>(unit) : '\0';
        return base64Value(character) >= 0 ? character : 'A';
    });
    characters += "="; // writes the bytes of an incomplete last group
    std::vector<std::uint8_t> bytes(units.size() / 4 * 3 + units.size() % 4 * 3 / 4);
    Base64Decoder().Decode(characters.data(), characters.size(), bytes);
    return CFDataCreate(bytes.data(), bytes.size());
}

} // namespace torka
