#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <optional>
#include <string>

namespace torka {

// What the bar under the pages says, and which of its buttons are offered.
struct ConflictNotice {
    std::string text;
    std::string resolveTip;  // what Resolve would change; "" when it is not offered
    bool isConflict = false; // else a report of what a resolution changed
    bool canUndo = false;
    bool CanResolve() const { return !resolveTip.empty(); }
};

// None while there is nothing to say. `change`: the one made just now, null for none.
std::optional<ConflictNotice> conflictNotice(const PaneTexts& texts, const PaneChange* change);

} // namespace torka
