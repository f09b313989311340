// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Trays and supplies of the controller, read from a two-way data file (records TrayInfo and TonerInfo) for
// display as gauges. Texts are UTF-8 and come from the network.

namespace torka {

struct TrayGauge {
    std::string name;
    std::string media;          // the loaded medium with its size; "" for unknown
    std::optional<int> percent; // 0 to 100; none for unknown
    bool hasSome = false;       // not empty, the level is unknown
};

struct SupplyGauge {
    std::string name;
    std::string color; // "#rrggbb"; "" for none
    std::optional<int> percent;
    bool needsAttention = false; // low, or a waste box that is full
};

struct ServerGauges {
    std::vector<TrayGauge> trays;
    std::vector<SupplyGauge> supplies;
    bool Empty() const { return trays.empty() && supplies.empty(); }
};

// Records that cannot be read are left out. At most 64 of each kind; texts are cut to 200 characters.
ServerGauges gaugesOf(std::string_view dataFile);

} // namespace torka
