// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/editing/PaneCatalog.h"
#include "pane/presentation/PaneWords.h"

#include <string>

namespace torka {

// The displayed number of a range is its own number times the factor, in this unit. Example: a range in
// "1/100 mm" is shown in millimetres.
struct ShownUnit {
    double factor = 1.0;
    int decimals = 0; // of the factor
    std::string name; // "" for none
};
ShownUnit shownUnit(const PaneField& field);
// The number of decimals that shows the steps of a float range exactly, 0 to 4.
int decimalsFor(float increment);

// A whole or decimal range as a slider and a number box show it. Functions with "Shown" in their name use
// displayed numbers, the others the own numbers of the control. Refers to the control.
class NumberScale {
public:
    explicit NumberScale(const PaneField& field);

    const ShownUnit& Unit() const { return unit; }
    int Decimals() const { return decimals; } // of displayed numbers
    double ShownMinimum() const { return minimum * unit.factor; }
    double ShownMaximum() const { return maximum * unit.factor; }
    double ShownStep() const { return step * unit.factor; }

    double Number() const; // the present value
    // The positions of the slider are 0 to SliderMaximum(), which is at most 1,000.
    int SliderMaximum() const;
    int SliderPlace(double number) const;
    double AtSlider(int place) const;
    // The nearest number within the bounds, as text for the control.
    std::string ValueText(double number) const;

private:
    const PPDXControl& control;
    ShownUnit unit;
    int decimals = 0;
    bool isWhole = false;
    double minimum = 0;
    double maximum = 0;
    double step = 1;
};

// The side of a page in the unit of the person's country.
struct SizeScale {
    explicit SizeScale(bool metric);

    double points; // in one unit
    int decimals;
    double step;
    const PaneWord& unit;

    // A bound given in points, in the unit, rounded inwards to the displayed decimals: every displayed value
    // is within the bounds.
    double Least(double boundInPoints) const;
    double Largest(double boundInPoints) const;
    // Width and height in the unit, as text for the control.
    std::string ValueText(double width, double height) const;
};

} // namespace torka
