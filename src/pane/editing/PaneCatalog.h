// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace torka {

class PPDXControl;
class PPDXElement;
class ZANPPD;

// One choice of a popup or a check box. Texts are UTF-8.
struct PaneChoice {
    std::string keyword;
    std::string name; // for people
};

// A field: one control in its place on a page.
struct PaneField {
    PPDXControl* control = nullptr; // never null
    std::string keyword;            // with its asterisk
    std::string name;               // for people, without the unit
    std::string unit;               // of a range, "" without one
    std::size_t page = 0;           // index in the catalogue
    std::size_t group = 0;          // index in the page
};

struct PaneGroup {
    std::string keyword;
    std::string name;
    std::vector<PaneField> fields;
};

struct PanePage {
    std::string keyword;
    std::string name; // "" for the installable options; the presentation names them
    std::vector<PaneGroup> groups;
    bool installable = false;
};

// The pages, groups and fields that the pane shows, in the order of the description. What the description or
// the management template hides is left out. The installable options come last.
//
// Refers to the description. The editor makes a new catalogue when controls were added. Choices are read at
// each call, because the controller may replace them.
class PaneCatalog {
public:
    // `hides`: whether the management template hides a keyword; may be empty.
    PaneCatalog(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides);
    PaneCatalog(const PaneCatalog&) = delete;
    PaneCatalog& operator=(const PaneCatalog&) = delete;

    const std::vector<PanePage>& Pages() const { return pages; }
    // Null when no page shows the keyword.
    const PaneField* Find(std::string_view keyword) const;
    // The field of any control, whether a page shows it or not.
    static PaneField FieldOf(PPDXControl& control);
    // Calls `visit` with every field, in order.
    void ForEach(const std::function<void(const PaneField&)>& visit) const;

    // For the tests; no caller here
    std::size_t FieldCount() const { return byKeyword.size(); }

private:
    void AddPages(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides);
    void AddInstallableOptions(const ZANPPD& ppd);

    std::vector<PanePage> pages;
    std::unordered_map<std::string_view, const PaneField*> byKeyword; // the first of each
};

// The choices of a popup, or of a check box (on, then off), in order. None for other controls.
std::vector<PaneChoice> choicesOf(const PPDXControl& control);
// The name of a choice for people; its keyword when the control has no such choice.
std::string choiceName(const PPDXControl& control, std::string_view choiceKeyword);
// The name of an element for people, without the blanks around it; its keyword when the name is empty.
std::string nameOf(const PPDXElement& element);

} // namespace torka
