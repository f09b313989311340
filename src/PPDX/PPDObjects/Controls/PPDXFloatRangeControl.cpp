#include "PPDX/PPDObjects/Controls/PPDXFloatRangeControl.h"

#include "PPDX/PPDObjects/NumberText.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <cmath>

namespace torka {

PPDXFloatRangeControl::PPDXFloatRangeControl(const ControlDefinition& definition,
                                             const FloatRangeBounds& bounds)
    : PPDXControl(CNTL_TYPE::floatRange, definition)
    , value(0)
    , minimum(nearestFloat(bounds.minimum))
    , maximum(nearestFloat(bounds.maximum))
    , increment(nearestFloat(bounds.increment))
    , defaultValue(nearestFloat(bounds.defaultValue)) {
    SetValue(defaultValue);
}

PPDXFloatRangeControl::PPDXFloatRangeControl(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::floatRange, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    minimum = record.Real("minimum");
    maximum = record.Real("maximum");
    increment = record.Real("increment");
    defaultValue = record.Real("default");
    SetValue(defaultValue);
    RestoreValue(record);
}

PPDXFloatRangeControl::~PPDXFloatRangeControl() = default;

void PPDXFloatRangeControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetReal("value", static_cast<double>(value));
    record.SetReal("minimum", static_cast<double>(minimum));
    record.SetReal("maximum", static_cast<double>(maximum));
    record.SetReal("increment", static_cast<double>(increment));
    record.SetReal("default", static_cast<double>(defaultValue));
}

void PPDXFloatRangeControl::ResetToDefaultValue() { SetValue(defaultValue); }

long PPDXFloatRangeControl::PostScript(unsigned char* out) {
    const NumberText number(value, 4, 9);
    if (!injectedPS) {
        Inject(Keyword(), PSData(), PSLength(), number.Text(), injectedPS.emplace());
    }
    return GeneratePSOutputData(out, bytesOf(*injectedPS), static_cast<long>(injectedPS->size()),
                                number.View(), true);
}

void PPDXFloatRangeControl::Restore(Settings& settings, int index) {
    RestoreValue(StoredRecord(settings, "Control", index));
}

void PPDXFloatRangeControl::RestoreValue(const StoredRecord& record) {
    if (!record.Has("value")) {
        return;
    }
    const float stored = record.Real("value");
    SetValue(stored);
    if (stored >= minimum && stored <= maximum) {
        value = stored; // without rounding it again
    }
}

CFStringRef PPDXFloatRangeControl::CopyCurrentControlValueString() {
    return cfString(NumberText(value, 3).View());
}

void PPDXFloatRangeControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        SetValue(nearestFloat(CFStringGetDoubleValue(text)));
    }
}

void PPDXFloatRangeControl::SetValue(float newValue) {
    if (newValue < minimum || std::isnan(newValue)) {
        newValue = minimum;
    }
    if (newValue > maximum) {
        newValue = maximum;
    }
    // Rounds twice, as the controller's own software does, unless the quotient or the product overflows.
    const float steps = increment != 0 ? newValue / increment : 0;
    const float product = increment * steps;
    value = increment != 0 && std::isfinite(steps) && std::isfinite(product) ? product : newValue;
    injectedPS.reset();
}

} // namespace torka
