// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/ElementList.h"
#include "PPDX/PPDObjects/Groups/PPDXGroup.h"

namespace torka {

// Groups in order of addition. The description's main collection owns all scroll panes and roll-downs and
// deletes them; a scroll pane's collection refers to its roll-downs.
class PPDXGroups {
public:
    enum class Ownership { owns, refers };

    explicit PPDXGroups(Ownership ownership = Ownership::owns);
    PPDXGroups(const PPDXGroups&) = delete;
    PPDXGroups& operator=(const PPDXGroups&) = delete;
    ~PPDXGroups();

    // Adds a group. An owning collection takes ownership. Ignores null.
    void Add(PPDXGroup* group);
    bool Empty() const { return list.Empty(); }
    // Iterate over the groups that the current display options show.
    PPDXGroup* First();
    PPDXGroup* Next();
    template <class Visit>
    void ForEach(Visit visit) const {
        list.ForEach(visit);
    }
    // Returns the first group whose keyword equals (exact) or contains the name; null for null.
    PPDXGroup* Find(const char* name, bool exact) const { return list.Find(name, exact); }

    // Given interface; no caller here
    // Rebuilds and owns the groups that Save() stored. Puts each roll-down into its scroll pane.
    explicit PPDXGroups(Settings& settings);
    // Counts every group, regardless of the display options.
    std::size_t Count() const { return list.Size(); }
    void Save(Settings& settings) const;

private:
    Ownership ownership;
    ElementList<PPDXGroup> list;
};

// Return false for null.
bool IsRollDown(const PPDXGroup* group);

// Given interface; no caller here
bool IsScrollPane(const PPDXGroup* group);
// Returns null at the end or for null.
PPDXGroup* NextGroup(PPDXGroups* groups);
// Returns true for null.
bool IsGrouPointerListEmpty(const PPDXGroups* groups);

} // namespace torka
