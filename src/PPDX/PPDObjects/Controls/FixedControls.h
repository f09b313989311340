// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include <string_view>

// Controls that no job changes.

namespace torka {

// True when the keyword ends in "Bidi" and is longer. False for null.
inline bool isBidiKeyword(const char* keyword) {
    constexpr std::string_view ending = "Bidi";
    const std::string_view text(keyword == nullptr ? "" : keyword);
    return text.size() > ending.size() && text.ends_with(ending);
}

// Says what hardware the printer has: in the group of the installable options, or flagged as one of them.
inline bool isInstallableOption(const PPDXControl& control) {
    const PPDXElement* group = control.GetParent();
    return control.IsInstallableOption() || (group != nullptr && *group == "QVPPInstallableOptions");
}

} // namespace torka
