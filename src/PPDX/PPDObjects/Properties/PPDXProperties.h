// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/ElementList.h"
#include "PPDX/PPDObjects/Properties/PPDXProperty.h"

namespace torka {

class PPDXGroups;

// The property pages in the order of the description; owns them.
class PPDXProperties {
public:
    PPDXProperties();
    PPDXProperties(const PPDXProperties&) = delete;
    PPDXProperties& operator=(const PPDXProperties&) = delete;
    ~PPDXProperties();

    // Takes ownership of the page. Ignores null.
    void Add(PPDXProperty* property);
    bool Empty() const { return list.Empty(); }
    // Iterate over every page, regardless of the display options: a page has no parent.
    template <class Visit>
    void ForEach(Visit visit) const {
        list.ForEach(visit);
    }
    // Returns the first page whose keyword equals (exact) or contains the name; null for null.
    PPDXProperty* Find(const char* name, bool exact) const { return list.Find(name, exact); }

    // Given interface; no caller here
    // Rebuilds the pages that Save() stored, each with its scroll pane from `groups`.
    PPDXProperties(Settings& settings, const PPDXGroups* groups);
    std::size_t Count() const { return list.Size(); }
    // Iterate over every page, regardless of the display options: a page has no parent.
    PPDXProperty* First();
    PPDXProperty* Next();
    void Save(Settings& settings) const;

private:
    ElementList<PPDXProperty> list;
};

// Given interface; no caller here
// Returns null at the end or for null.
PPDXProperty* NextProperty(PPDXProperties* properties);
// Returns true for null.
bool IsPropertyListEmpty(const PPDXProperties* properties);

} // namespace torka
