#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/PaneTexts.h"

#include <string>
#include <string_view>
#include <vector>

// Values, settings and reasons in a person's words.

namespace torka {

// The name of a choice; a check box without names of its own has On and Off.
std::string shownChoice(const PaneTexts& texts, const PPDXControl& control, std::string_view choice);
// A value in the form of PaneEditor::Value; a secret as dots.
std::string shownValue(const PaneTexts& texts, const PaneField& field, std::string_view value);
// “Media Type: Labels”
std::string shownSetting(const PaneTexts& texts, const PaneSetting& setting);
// "Print on Both Sides to Off, Staple to None"
std::string shownChanges(const PaneTexts& texts, const std::vector<PaneSetting>& changes);
// Where a field stands: "Layout › Page Setup".
std::string shownPlace(const PaneTexts& texts, const PaneField& field);
// "Back to Plain"
std::string shownReset(const PaneTexts& texts, const PaneField& field);

// Why a person cannot change the control; "" when they can.
std::string whyLocked(const PaneTexts& texts, const PPDXControl& control);
// "Two is not available with “Media Type: Labels”.", at most three reasons named; "" when nothing forbids it.
std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control, const PaneChoice& choice);
// The same for each forbidden choice of the control, one a line, at most twelve and how many more.
std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control);
// Why the custom page size has no effect; "" when it has.
std::string whySizeIsUnused(const PaneTexts& texts);

// A check box that is on or off now.
struct CheckBoxState {
    std::string whyOtherForbidden; // "" when the other state is allowed
    bool canChange = true;         // also while the present state is in conflict itself
};
CheckBoxState checkBoxState(const PaneTexts& texts, const PPDXControl& control, bool isOn);

} // namespace torka
