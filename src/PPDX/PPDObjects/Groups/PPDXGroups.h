#pragma once

#include "PPDX/PPDObjects/ElementList.h"
#include "PPDX/PPDObjects/Groups/PPDXGroup.h"

namespace torka {

// Groups in the order in which they were added. The description's main collection owns all scroll panes and
// roll-downs and deletes them; a scroll pane's collection refers to its roll-downs.
class PPDXGroups {
public:
    enum class Ownership { owns, refers };

    explicit PPDXGroups(Ownership ownership = Ownership::owns);
    // The groups that Save() stored, owned, each roll-down in its scroll pane again.
    explicit PPDXGroups(Settings& settings);
    PPDXGroups(const PPDXGroups&) = delete;
    PPDXGroups& operator=(const PPDXGroups&) = delete;
    ~PPDXGroups();

    // An owning collection takes the group over. Null is passed over.
    void Add(PPDXGroup* group);
    // Everything that was added, whatever the display options.
    std::size_t Count() const { return list.Size(); }
    bool Empty() const { return list.Empty(); }
    // Those that the display options in force show.
    PPDXGroup* First();
    PPDXGroup* Next();
    template <class Visit>
    void ForEach(Visit visit) const {
        list.ForEach(visit);
    }
    // The first whose keyword equals (exact) or contains the name; null for null.
    PPDXGroup* Find(const char* name, bool exact) const { return list.Find(name, exact); }
    void Save(Settings& settings) const;

private:
    Ownership ownership;
    ElementList<PPDXGroup> list;
};

// False for null.
bool IsRollDown(const PPDXGroup* group);
bool IsScrollPane(const PPDXGroup* group);
// Null at the end or for null.
PPDXGroup* NextGroup(PPDXGroups* groups);
// True for null.
bool IsGrouPointerListEmpty(const PPDXGroups* groups);

} // namespace torka
