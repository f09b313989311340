// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/EmissionSource.h"

#include <array>
#include <string>
#include <vector>

namespace torka {

class PDEData;

// The settings of a panel outside its controls, as a value: the lists without a control, the account pairs,
// and the chosen watermark. The watermarks themselves belong to the printer.
struct SideSettings {
    std::array<std::vector<WideSetting>, 4> lists; // in the order of PDEData::SideLists
    std::array<WideSetting, 4> accounts;
    std::string watermark; // definition of the chosen one; "" for none
    bool firstPageOnly = false;

    static SideSettings Of(PDEData& data);
    // When the printer no longer has the watermark, none is chosen.
    void PutInto(PDEData& data) const;
    bool operator==(const SideSettings&) const = default;
};

} // namespace torka
