// SPDX-License-Identifier: Apache-2.0
#include "output/WatermarkFields.h"

#include "output/ZANWatermark.h"

#include <algorithm>

namespace torka {

WatermarkFields WatermarkFields::Of(const ZANWatermark& watermark) {
    return {watermark.IsClear(),
            watermark.XOffset(),
            watermark.YOffset(),
            watermark.Red(),
            watermark.Green(),
            watermark.Blue(),
            watermark.IsFirstPageOnly(),
            watermark.Angle(),
            watermark.FontSize(),
            watermark.FontName(),
            watermark.Text()};
}

std::string WatermarkFields::Definition() const {
    std::string definition;
    const auto add = [&](std::int32_t number) { definition += std::to_string(number) + ','; };
    add(isClear ? 1 : 0);
    add(xOffset);
    add(yOffset);
    add(red);
    add(green);
    add(blue);
    add(0); // not used
    add(isFirstPageOnly ? 1 : 0);
    add(0);
    add(angle);
    add(0);
    add(0);
    add(fontSize);
    std::ranges::copy_if(fontName, std::back_inserter(definition), [](char c) { return c != ','; });
    definition += ',';
    std::ranges::transform(text, std::back_inserter(definition), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F ? ' ' : c;
    });
    return definition;
}

} // namespace torka
