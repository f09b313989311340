// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "PPDX/PPDObjects/ElementList.h"

namespace torka {

// The controls that the quick-access area also offers, in the order of the description. Refers to them.
class PPDXShortcuts {
public:
    void Add(PPDXControl* control);
    PPDXControl* First();
    PPDXControl* Next();

    // Given interface; no caller here
    bool Empty() const { return list.Empty(); }
    std::size_t Count() const { return list.Size(); }
    // Returns the first control whose keyword equals (exact) or contains the argument; null for null.
    PPDXControl* Find(const char* keyword, bool exact) const { return list.Find(keyword, exact); }
    PPDXControl* PageSize() const;
    PPDXControl* InputSlot() const;
    PPDXControl* Duplex() const;
    PPDXControl* Orientation() const;
    // Always return null: no description names these two yet.
    PPDXControl* Huekeeper() const;
    PPDXControl* MediaSource() const;

private:
    ElementList<PPDXControl> list;
};

// Given interface; no caller here
// Returns null at the end or for null.
PPDXControl* NextShortcut(PPDXShortcuts* shortcuts);
// Returns true for null.
bool IsShortcutsListEmpty(const PPDXShortcuts* shortcuts);

} // namespace torka
