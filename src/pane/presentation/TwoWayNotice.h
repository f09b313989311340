// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/PaneTexts.h"

#include <string>

namespace torka {

// The state of two-way communication with the controller.
enum class TwoWayState { off, on, failed };

TwoWayState twoWayState(bool isOn, bool hasFailed);

struct TwoWayNotice {
    std::string text;   // beside the sign
    std::string hint;   // its tooltip; "" for none
    std::string spoken; // for assistive technology
};
TwoWayNotice twoWayNotice(const PaneTexts& texts, TwoWayState state);

} // namespace torka
