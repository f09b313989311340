// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/FixedControls.h"

namespace torka {

constexpr unsigned maximumCopies = 9999; // four digits

// Tests of keywords against the pane's fixed tables.

// True for one of the 14 expert colour controls, compared whole. False for null.
bool isExpertHueKeeperControl(const char* keyword);
// True when the keyword contains one of the five colour keywords whose choices the controller supplies. False
// for null.
bool isSpecialHueKeeperControl(const char* keyword);
// True for one of the 96 controls that never appear on the basic panel, compared whole. False for null.
bool isHiddenFromBasicPanel(const char* keyword);

// Chosen by the system's own panes, whose choice the control only shows: page size, orientation, collation.
bool isChosenBySystem(const PPDXControl& control);

} // namespace torka
