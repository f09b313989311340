// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/NumberScale.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "StringUtils.h"

#include <algorithm>
#include <cmath>

namespace torka {
namespace {

constexpr double maximumSliderSteps = 1000;

} // namespace

ShownUnit shownUnit(const PaneField& field) {
    for (const int decimals : {1, 2, 3}) {
        const long parts = std::lround(std::pow(10.0, decimals));
        const std::string fraction = "1/" + std::to_string(parts) + ' ';
        if (field.unit.starts_with(fraction)) {
            const std::string_view name = std::string_view(field.unit).substr(fraction.size());
            return {1.0 / static_cast<double>(parts), decimals, std::string(trimBlanks(name))};
        }
    }
    return {1.0, 0, field.unit};
}

int decimalsFor(float increment) {
    int decimals = 0;
    double step = std::abs(static_cast<double>(increment));
    constexpr double tolerance = 1e-4; // 0.1 as a float is not exact
    while (decimals < 4 && std::abs(step - std::round(step)) > tolerance * std::max(step, 1.0)) {
        step *= 10.0;
        ++decimals;
    }
    return decimals;
}

NumberScale::NumberScale(const PaneField& field)
    : control(*field.control)
    , unit(shownUnit(field))
    , decimals(unit.decimals) {
    if (const auto* range = dynamic_cast<const PPDXRangeControl*>(&control)) {
        isWhole = true;
        minimum = static_cast<double>(range->MinVal());
        maximum = static_cast<double>(range->MaxVal());
        step = static_cast<double>(std::max(range->Increment(), 1L));
    } else if (const auto* decimal = dynamic_cast<const PPDXFloatRangeControl*>(&control)) {
        minimum = static_cast<double>(decimal->MinVal());
        maximum = static_cast<double>(decimal->MaxVal());
        decimals = std::max(decimals, decimalsFor(decimal->Increment()));
        step = static_cast<double>(decimal->Increment());
        if (!(step > 0)) {
            step = std::pow(10.0, -decimals);
        }
    }
    maximum = std::max(maximum, minimum);
}

double NumberScale::Number() const {
    if (isWhole) {
        return static_cast<double>(static_cast<const PPDXRangeControl&>(control).GetValue());
    }
    return static_cast<double>(static_cast<const PPDXFloatRangeControl&>(control).GetValue());
}

int NumberScale::SliderMaximum() const {
    return static_cast<int>(std::lround(std::clamp((maximum - minimum) / step, 1.0, maximumSliderSteps)));
}

int NumberScale::SliderPlace(double number) const {
    const double span = maximum - minimum;
    return span > 0 ? static_cast<int>(std::lround((number - minimum) / span * SliderMaximum())) : 0;
}

double NumberScale::AtSlider(int place) const {
    const double share = static_cast<double>(place) / SliderMaximum();
    return minimum + std::round(share * (maximum - minimum) / step) * step;
}

std::string NumberScale::ValueText(double number) const {
    const double held = std::clamp(number, minimum, maximum);
    return isWhole ? NumberText(std::lround(held)).Text() : NumberText(static_cast<float>(held), 4).Text();
}

SizeScale::SizeScale(bool metric)
    : points(metric ? 72.0 / 25.4 : 72.0)
    , decimals(metric ? 1 : 2)
    , step(metric ? 1.0 : 0.1)
    , unit(metric ? words::millimetres : words::inches) {}

double SizeScale::Least(double boundInPoints) const {
    const double grid = std::pow(10.0, decimals);
    return std::ceil(boundInPoints / points * grid) / grid;
}

double SizeScale::Largest(double boundInPoints) const {
    const double grid = std::pow(10.0, decimals);
    return std::floor(boundInPoints / points * grid) / grid;
}

std::string SizeScale::ValueText(double width, double height) const {
    const auto text = [this](double side) -> std::string {
        return NumberText(static_cast<float>(side * points), 6).Text();
    };
    return text(width) + " " + text(height);
}

} // namespace torka
