// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneEditor.h"
#include "pane/presentation/JobPaper.h"
#include "pane/presentation/PaneTexts.h"

#include <string>
#include <string_view>
#include <vector>

// Values, settings and reasons as texts for people.

namespace torka {

// The name of a choice. For a check box without names of its own it is On or Off.
std::string shownChoice(const PaneTexts& texts, const PPDXControl& control, std::string_view choice);
// The text of a value in the form of PaneEditor::Value. A secret is shown as dots.
std::string shownValue(const PaneTexts& texts, const PaneField& field, std::string_view value);
// "210 × 297 mm"
std::string shownSize(const PaneTexts& texts, const PaperSize& size);
// “Media Type: Labels”
std::string shownSetting(const PaneTexts& texts, const PaneSetting& setting);
// "Print on Both Sides to Off, Staple to None"
std::string shownChanges(const PaneTexts& texts, const std::vector<PaneSetting>& changes);
// The page and group of a field: "Layout › Page Setup".
std::string shownPlace(const PaneTexts& texts, const PaneField& field);
// "Back to Plain"
std::string shownReset(const PaneTexts& texts, const PaneField& field);

// Why a person cannot change the control; "" when it can be changed.
std::string whyLocked(const PaneTexts& texts, const PPDXControl& control);
// "Two is not available with “Media Type: Labels”." Names at most three reasons. "" when nothing forbids the
// choice.
std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control, const PaneChoice& choice);
// The same for each forbidden choice of the control, one a line. Names at most twelve choices, and the number
// of the others.
std::string whyForbidden(const PaneTexts& texts, const PPDXControl& control);
// The same with what a person can do about each choice.
struct ForbiddenChoice {
    std::string keyword;    // of the choice
    std::string why;        // a sentence
    std::string changes;    // "Changes Sides to Long Edge, Media Type to Plain"; "" when there is no way
    const PaneWord* button; // for the changes: both, or all
};
struct ForbiddenChoices {
    std::vector<ForbiddenChoice> choices;
    std::string more; // "and 3 more"; "" when all are named
};
ForbiddenChoices forbiddenChoices(const PaneTexts& texts, const PPDXControl& control);
// Why the custom page size has no effect; "" when it has one.
std::string whySizeIsUnused(const PaneTexts& texts);

// The state of a check box.
struct CheckBoxState {
    std::string whyOtherForbidden; // "" when the other state is allowed
    bool canChange = true;         // true when the present state is in conflict
};
CheckBoxState checkBoxState(const PaneTexts& texts, const PPDXControl& control, bool isOn);

} // namespace torka
