// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/EmissionSource.h"

#include <utility>

namespace torka::tests {

// The data that an emission reads, without a pane: mainly a description and its settings.
class PlainSource final : public EmissionSource {
public:
    PlainSource(ZANPPD& model, PMPrintSettings printSettings)
        : description(model)
        , settings(std::move(printSettings)) {}
    ZANPPD* Description() const override { return &description; }
    PMPrintSettings Settings() const override { return settings; }
    std::uint16_t PageOrientation() const override { return orientation; }
    bool IsPageSizeSuppressed() const override { return false; }
    bool IsTwoWayEnabled() const override { return isTwoWay; }
    std::span<const WideSetting> MixedMedia() const override { return {}; }
    std::span<const WideSetting> PadCovers() const override { return {}; }
    std::span<const WideSetting> SlipSheets() const override { return {}; }
    std::span<const WideSetting> CoverPages() const override { return {}; }
    std::span<const WideSetting> PaperCatalogue() const override { return {}; }
    ZANWatermark* SelectedWatermark() const override { return watermark; }

    ZANWatermark* watermark = nullptr;
    std::uint16_t orientation = kPMPortrait;
    bool isTwoWay = false;

private:
    ZANPPD& description;
    PMPrintSettings settings;
};

} // namespace torka::tests
