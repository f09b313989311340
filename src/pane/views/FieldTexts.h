#pragma once

#include "pane/views/PaneContext.h"

#include <QString>

#include <vector>

class QLabel;
class QWidget;

// Values, settings and reasons in a person's words. All of it is plain text: a description may hold anything.

namespace torka {

// For labels, check boxes, buttons and group headers, where "&" marks a shortcut.
QString labelText(const QString& plain);
// Tooltips guess whether they hold markup; this one is always plain text, wrapped. "" for none.
void setPlainToolTip(QWidget& widget, const QString& plain);
QString plainToolTip(const QString& plain);

// Aligns by the layout's direction; a label goes by that of its text otherwise.
void alignLeading(QLabel& label);

// The name of a choice; a check box without names of its own has On and Off.
QString shownChoice(const PaneContext& context, const PPDXControl& control, std::string_view choice);
// A value in the form of PaneEditor::Value; a secret as dots.
QString shownValue(const PaneContext& context, const PaneField& field, std::string_view value);
// “Media Type: Labels”
QString shownSetting(const PaneContext& context, const PaneSetting& setting);
// "Two is not available with “Media Type: Labels”.", at most three reasons named.
QString whyForbidden(const PaneContext& context, const PPDXControl& control, const PaneChoice& choice);
// "Print on Both Sides to Off, Staple to None"
QString shownChanges(const PaneContext& context, const std::vector<PaneSetting>& changes);
// What a job note's text may hold and how long it may be.
QString noteRules(const PaneContext& context, const PPDXControl& note);

// How a range is shown: its number times the factor, in its unit. "1/100 mm" is shown in millimetres.
struct ShownUnit {
    double factor = 1.0;
    int decimals = 0; // of the factor
    QString name;     // "" for none
};
ShownUnit shownUnit(const PaneField& field);
// Decimals that show a float range's steps exactly, 0 to 4.
int decimalsFor(float increment);

inline constexpr double pointsPerMillimetre = 72.0 / 25.4;
inline constexpr double pointsPerInch = 72.0;

} // namespace torka
