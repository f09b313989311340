// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace torka {

class ZANWatermark;

// The fields of a watermark's definition (docs/watermarks.md), for editing and writing back.
struct WatermarkFields {
    static constexpr std::size_t longestText = 120; // UTF-16 units; fits into a job in every encoding

    bool isClear = false;
    std::int32_t xOffset = 0; // points from the page's centre
    std::int32_t yOffset = 0;
    int red = 0; // 0 to 255
    int green = 0;
    int blue = 0;
    bool isFirstPageOnly = false;
    std::int32_t angle = 0;     // tenths of a degree, counter-clockwise
    std::int32_t fontSize = 48; // points
    std::string fontName = "Helvetica";
    std::string text; // UTF-8

    bool operator==(const WatermarkFields&) const = default;

    static WatermarkFields Of(const ZANWatermark& watermark);
    // Returns the definition. Control characters of the text become blanks. Commas in the font's name would
    // shift the fields and are removed.
    std::string Definition() const;
};

} // namespace torka
