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
    std::string name; // "" for the installable options, which the view names
    std::vector<PaneGroup> groups;
    bool installable = false;
};

// What the pane shows of a description and where: pages of groups of fields, in the description's order,
// without what is hidden there or by the management template. Last come the installable options.
//
// Refers to the description. Made anew when controls were added to it; choices are asked for each time, since
// the controller may replace them.
class PaneCatalog {
public:
    // `hides`: what the management template leaves out, by keyword; may be empty.
    PaneCatalog(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides);
    PaneCatalog(const PaneCatalog&) = delete;
    PaneCatalog& operator=(const PaneCatalog&) = delete;

    const std::vector<PanePage>& Pages() const { return pages; }
    std::size_t FieldCount() const { return byKeyword.size(); }
    // Null when no page shows the keyword.
    const PaneField* Find(std::string_view keyword) const;
    // A field of any control, on a page or not.
    static PaneField FieldOf(PPDXControl& control);
    // Every field, in order.
    void ForEach(const std::function<void(const PaneField&)>& visit) const;

private:
    void AddPages(const ZANPPD& ppd, const std::function<bool(std::string_view)>& hides);
    void AddInstallableOptions(const ZANPPD& ppd);

    std::vector<PanePage> pages;
    std::unordered_map<std::string_view, const PaneField*> byKeyword; // the first of each
};

// Of a popup or a check box (on, then off), in order; none for other controls.
std::vector<PaneChoice> choicesOf(const PPDXControl& control);
// The name for people of one choice; its keyword when the control does not have it.
std::string choiceName(const PPDXControl& control, std::string_view choiceKeyword);
// The name for people of an element, without the blanks around it; its keyword when it is empty.
std::string nameOf(const PPDXElement& element);

} // namespace torka
