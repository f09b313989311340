#pragma once

#include "pane/exchange/ServerExchange.h"
#include "pane/exchange/ServerGauges.h"
#include "pane/presentation/PaneTexts.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

// What the gauges of trays and supplies say, to assistive technology and in their tooltips.

namespace torka {

// Where the gauges have it from. Every function is set.
struct GaugeSource {
    std::function<bool()> isOn; // two-way communication
    std::function<ServerExchange::State()> state;
    std::function<std::shared_ptr<const std::string>()> data;
    std::function<void()> readAgain;
    std::function<void(std::function<void()>)> whenChanged; // calls a listener after each change
};

// One gauge: a level as a bar with a name.
struct ShownGauge {
    std::string name;
    std::string detail; // what a tray holds; "" for nothing known
    std::string color;  // "#rrggbb"; "" for the usual one
    std::optional<int> percent;
    bool hasSome = false; // drawn half: some is left, not known how much
    bool needsAttention = false;

    // The letter under a supply that stands beside others.
    std::string Initial() const;
};
ShownGauge shownGauge(const TrayGauge& tray);
ShownGauge shownGauge(const SupplyGauge& supply);

// "Tray 1 – Plain, A4: 76 %", "Tray 2: 0 %, needs attention"
std::string gaugeSentence(const PaneTexts& texts, const ShownGauge& gauge);

} // namespace torka
