#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Trays and supplies of the controller as a two-way data file tells them (records TrayInfo and TonerInfo), in
// the form in which gauges show them. Texts are UTF-8 and come from the network.

namespace torka {

struct TrayGauge {
    std::string name;
    std::string media;          // what is loaded, with its size; "" for nothing known
    std::optional<int> percent; // 0 to 100; none when the controller does not know
    bool hasSome = false;       // not how much, but some
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

// What no reader accepts is left out. At most 64 of each kind, texts cut to 200 characters.
ServerGauges gaugesOf(std::string_view dataFile);

} // namespace torka
