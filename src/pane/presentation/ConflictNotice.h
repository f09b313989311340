// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <optional>
#include <string>

namespace torka {

// The text of the bar below the pages, and the buttons that it offers.
struct ConflictNotice {
    std::string text;
    std::string resolveTip;  // the changes of Resolve; "" when Resolve is not offered
    bool isConflict = false; // false: the text tells what a resolution changed
    bool canUndo = false;
    bool CanResolve() const { return !resolveTip.empty(); }
};

// None when there is nothing to tell. `change`: the change made just now, null for none.
std::optional<ConflictNotice> conflictNotice(const PaneTexts& texts, const PaneChange* change);

} // namespace torka
