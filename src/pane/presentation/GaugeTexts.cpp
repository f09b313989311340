// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/GaugeTexts.h"

#include <algorithm>

namespace torka {

std::string ShownGauge::Initial() const {
    const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
    const auto rest = name.begin() + (name.empty() ? 0 : 1);
    return {name.begin(), std::find_if_not(rest, name.end(), isContinuation)};
}

ShownGauge shownGauge(const TrayGauge& tray) {
    return {tray.name, tray.media, {}, tray.percent, tray.hasSome, tray.percent == 0};
}

ShownGauge shownGauge(const SupplyGauge& supply) {
    return {supply.name, {}, supply.color, supply.percent, false, supply.needsAttention};
}

std::string gaugeSentence(const PaneTexts& texts, const ShownGauge& gauge) {
    const std::string name = gauge.detail.empty() ? gauge.name : gauge.name + " – " + gauge.detail;
    std::string told = gauge.hasSome    ? texts.Say(words::gaugeSome, name)
                       : !gauge.percent ? texts.Say(words::gaugeUnknown, name)
                                        : texts.Say(words::gaugeLevel, name, std::to_string(*gauge.percent));
    return gauge.needsAttention ? texts.Say(words::gaugeAttention, told) : told;
}

} // namespace torka
