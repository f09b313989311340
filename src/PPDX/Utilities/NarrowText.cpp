// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/NarrowText.h"

#include <algorithm>
#include <utility>

namespace torka {

namespace {

constexpr std::pair<CFStringEncoding, std::string_view> names[] = {
    {kCFStringEncodingMacRoman, "Mac Roman"},
    {kCFStringEncodingMacJapanese, "Mac Japanese"},
    {kCFStringEncodingMacCentralEurRoman, "Mac Central European"},
    {kCFStringEncodingMacTurkish, "Mac Turkish"},
    {kCFStringEncodingUTF16, "UTF-16"},
    {kCFStringEncodingISOLatin1, "ISO Latin 1"},
    {kCFStringEncodingISOLatin2, "ISO Latin 2"},
    {kCFStringEncodingISOLatin5, "ISO Latin 5"},
    {kCFStringEncodingWindowsLatin1, "Windows Latin 1"},
    {kCFStringEncodingASCII, "ASCII"},
    {kCFStringEncodingGB_18030_2000, "GB 18030"},
    {kCFStringEncodingShiftJIS, "Shift_JIS"},
    {kCFStringEncodingNonLossyASCII, "non-lossy ASCII"},
    {kCFStringEncodingUTF8, "UTF-8"},
};

} // namespace

std::u16string charactersOutside(std::u16string_view text, CFStringEncoding encoding) {
    std::u16string outside;
    if (encodeText(text, encoding)) {
        return outside;
    }
    for (std::size_t position = 0; position < text.size();) {
        const std::size_t begin = position;
        nextCodePoint(text, position);
        const std::u16string_view character = text.substr(begin, position - begin);
        if (!encodeText(character, encoding) && outside.find(character) == std::u16string::npos) {
            outside += character;
        }
    }
    return outside;
}

std::string_view encodingName(CFStringEncoding encoding) {
    const auto* const found =
        std::ranges::find(names, encoding, &std::pair<CFStringEncoding, std::string_view>::first);
    return found == std::end(names) ? "an unknown encoding" : found->second;
}

} // namespace torka
