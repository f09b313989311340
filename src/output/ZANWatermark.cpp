// SPDX-License-Identifier: Apache-2.0
#include "output/ZANWatermark.h"

#include "StringUtils.h"
#include "output/WatermarkEncoding.h"
#include "output/WatermarkTemplates.h"
#include "platform/Printing.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <limits>

namespace torka {

namespace {

constexpr std::size_t fieldCount = 14;

std::int32_t heldTo(std::int64_t value, std::int64_t least, std::int64_t most) {
    return static_cast<std::int32_t>(std::clamp(value, least, most));
}

std::int32_t intField(std::string_view field) {
    return heldTo(integerValue(field), std::numeric_limits<std::int32_t>::min(),
                  std::numeric_limits<std::int32_t>::max());
}

int colourField(std::string_view field) { return heldTo(integerValue(field), 0, 255); }

std::int32_t negated(std::int32_t value) {
    return heldTo(-std::int64_t{value}, std::numeric_limits<std::int32_t>::min(),
                  std::numeric_limits<std::int32_t>::max());
}

std::string upperCaseHex(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        hex += digits[byte >> 4];
        hex += digits[byte & 0xF];
    }
    return hex;
}

// Returns the font in which a resource of this kind sets its text.
std::string resourceFontName(WatermarkFontKind kind, std::string fontName) {
    if (kind == WatermarkFontKind::latinExtended) {
        return "MyriadPro-Regular";
    }
    if (kind == WatermarkFontKind::chinese) {
        for (const char* known : {"AdobeHeitiStd-Regular", "AdobeSongStd-Light"}) {
            if (fontName.find(known) != std::string::npos) {
                return known;
            }
        }
    }
    return fontName;
}

} // namespace

ZANWatermark::ZANWatermark(const char* newDefinition)
    : definition(newDefinition == nullptr ? "" : newDefinition) {
    std::array<std::string_view, fieldCount> fields;
    std::string_view rest = definition;
    for (std::string_view& field : fields) {
        const std::size_t comma = rest.find(',');
        field = rest.substr(0, comma);
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    isClear = integerValue(fields[0]) != 0;
    xOffset = intField(fields[1]);
    yOffset = intField(fields[2]);
    red = colourField(fields[3]);
    green = colourField(fields[4]);
    blue = colourField(fields[5]);
    isFirstPageOnly = fields[7] == "1";
    angle = intField(fields[9]);
    fontSize = intField(fields[12]);
    fontName = fields[13];
    text = rest;
}

ZANWatermark::ZANWatermark(const wchar_t* newDefinition)
    : ZANWatermark(utf8FromWide(newDefinition == nullptr ? L"" : newDefinition).c_str()) {
    if (newDefinition != nullptr) {
        wideDefinition = newDefinition;
    }
}

const std::string& ZANWatermark::GetWMTextInHex(std::string_view language, std::string_view forFontName) {
    if (!hasTextInHex) {
        textInHex = upperCaseHex(watermarkBytes(text, watermarkFontKind(language, forFontName), forFontName));
        hasTextInHex = true;
    }
    return textInHex;
}

std::string ZANWatermark::Resource(const std::string& language, std::uint16_t orientation) {
    const std::string safeFontName = postScriptFontName(fontName);
    const WatermarkFontKind kind = watermarkFontKind(language, safeFontName);
    WatermarkParameters parameters;
    parameters.isLandscape = orientation == kPMLandscape;
    parameters.isReverseLandscape = orientation == kPMReverseLandscape;
    parameters.fontName = resourceFontName(kind, safeFontName);
    parameters.textInHex = GetWMTextInHex(language, safeFontName);
    parameters.fontSize = fontSize;
    parameters.isClear = isClear;
    parameters.red = red;
    parameters.green = green;
    parameters.blue = blue;
    parameters.angle = angle;
    // The offsets turn with the sheet: they refer to the page as it is read.
    parameters.xOffset = xOffset;
    parameters.yOffset = yOffset;
    if (parameters.isLandscape) {
        parameters.xOffset = negated(yOffset);
        parameters.yOffset = xOffset;
    } else if (parameters.isReverseLandscape) {
        parameters.xOffset = yOffset;
        parameters.yOffset = negated(xOffset);
    }
    parameters.isOnAllPages = !isFirstPageOnly;
    return watermarkResource(kind, parameters);
}

} // namespace torka
