#pragma once

#include "pane/editing/PaneCatalog.h"
#include "pane/presentation/PaneWords.h"

#include <string>

namespace torka {

// How a range is shown: its number times the factor, in its unit. "1/100 mm" is shown in millimetres.
struct ShownUnit {
    double factor = 1.0;
    int decimals = 0; // of the factor
    std::string name; // "" for none
};
ShownUnit shownUnit(const PaneField& field);
// Decimals that show a float range's steps exactly, 0 to 4.
int decimalsFor(float increment);

// A whole or decimal range as a slider and a number box show it. Numbers are the control's own unless they
// are called shown. Refers to the control.
class NumberScale {
public:
    explicit NumberScale(const PaneField& field);

    const ShownUnit& Unit() const { return unit; }
    int Decimals() const { return decimals; } // of shown numbers
    double ShownMinimum() const { return minimum * unit.factor; }
    double ShownMaximum() const { return maximum * unit.factor; }
    double ShownStep() const { return step * unit.factor; }

    double Number() const; // the present one
    // The slider's places are 0 to SliderMaximum(), at most 1,000.
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

// The side of a page in the country's unit.
struct SizeScale {
    explicit SizeScale(bool metric);

    double points; // of the unit
    int decimals;
    double step;
    const PaneWord& unit;

    // A bound in points, in the unit: inwards to what the decimals can show, so that a bound shown is a bound
    // kept.
    double Least(double boundInPoints) const;
    double Largest(double boundInPoints) const;
    // Width and height in the unit, as text for the control.
    std::string ValueText(double width, double height) const;
};

} // namespace torka
