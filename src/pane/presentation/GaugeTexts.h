// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/exchange/ServerExchange.h"
#include "pane/exchange/ServerGauges.h"
#include "pane/presentation/PaneTexts.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

// The texts of the gauges of trays and supplies, for tooltips and assistive technology.

namespace torka {

// The source of the gauges. Every function is set.
struct GaugeSource {
    std::function<bool()> isOn; // two-way communication
    std::function<ServerExchange::State()> state;
    std::function<std::shared_ptr<const std::string>()> data;
    std::function<void()> readAgain;
    std::function<void(std::function<void()>)> whenChanged; // calls a listener after each change
};

// One gauge: a level and a name.
struct ShownGauge {
    std::string name;
    std::string detail; // the medium in a tray; "" for unknown
    std::string color;  // "#rrggbb"; "" for the default
    std::optional<int> percent;
    bool hasSome = false; // not empty, the level is unknown
    bool needsAttention = false;

    // The first letter of the name, shown below a supply that stands beside others.
    std::string Initial() const;
};
ShownGauge shownGauge(const TrayGauge& tray);
ShownGauge shownGauge(const SupplyGauge& supply);

// "Tray 1 – Plain, A4: 76 %", "Tray 2: 0 %, needs attention"
std::string gaugeSentence(const PaneTexts& texts, const ShownGauge& gauge);

} // namespace torka
