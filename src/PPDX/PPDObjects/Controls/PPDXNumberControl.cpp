// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXNumberControl.h"

#include "PPDX/PPDObjects/NumberText.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <cmath>

namespace torka {

namespace {

// The differences between the two kinds of number.
template <typename Number>
struct Kind;

template <>
struct Kind<long> {
    static NumberText ValueText(long value) { return NumberText(value); }
    static NumberText PostScriptText(long value) { return NumberText(value); }
    static long FromText(const CFStringRef& text) { return CFStringGetIntValue(text); }
    static long Read(const StoredRecord& record, const char* field, long otherwise) {
        return record.Integer(field, otherwise);
    }
    static void Write(StoredRecord& record, const char* field, long number) {
        record.SetInteger(field, number);
    }
    static NumberBounds<long> Checked(const NumberBounds<long>& bounds) { return bounds; }
    static long Held(long value, const NumberBounds<long>& bounds) {
        // Increments of 1 and -1 need no rounding, and the smallest number % -1 overflows. 0 cannot divide.
        if (bounds.increment < -1 || bounds.increment > 1) {
            value -= value % bounds.increment;
        }
        value = value < bounds.minimum ? bounds.minimum : value;
        return value > bounds.maximum ? bounds.maximum : value;
    }
    // Held() may have stopped at a bound that is not a multiple of the increment. A second call would round
    // it away.
    static bool IsHeld(long stored, const NumberBounds<long>& bounds) {
        return stored == bounds.maximum || (stored == bounds.minimum && bounds.minimum < bounds.maximum);
    }
};

template <>
struct Kind<float> {
    static NumberText ValueText(float value) { return {value, 3}; }
    static NumberText PostScriptText(float value) { return {value, 4, 9}; }
    static float FromText(const CFStringRef& text) { return nearestFloat(CFStringGetDoubleValue(text)); }
    // A record without a number reads as 0.
    static float Read(const StoredRecord& record, const char* field, float) { return record.Real(field); }
    static void Write(StoredRecord& record, const char* field, float number) {
        record.SetReal(field, static_cast<double>(number));
    }
    static NumberBounds<float> Checked(const NumberBounds<float>& bounds) {
        return {nearestFloat(bounds.minimum), nearestFloat(bounds.maximum), nearestFloat(bounds.increment),
                nearestFloat(bounds.defaultValue)};
    }
    static float Held(float value, const NumberBounds<float>& bounds) {
        value = value < bounds.minimum || std::isnan(value) ? bounds.minimum : value;
        value = value > bounds.maximum ? bounds.maximum : value;
        // Rounds twice, as the controller's own software does, unless the quotient or the product overflows.
        const float steps = bounds.increment != 0 ? value / bounds.increment : 0;
        const float product = bounds.increment * steps;
        return bounds.increment != 0 && std::isfinite(steps) && std::isfinite(product) ? product : value;
    }
    // A stored number between the bounds is not rounded once more.
    static bool IsHeld(float stored, const NumberBounds<float>& bounds) {
        return stored >= bounds.minimum && stored <= bounds.maximum;
    }
};

} // namespace

template <typename Number>
PPDXNumberControl<Number>::PPDXNumberControl(CNTL_TYPE controlType, const ControlDefinition& definition,
                                             NumberBounds<Number> numberBounds)
    : PPDXControl(controlType, definition)
    , bounds(Kind<Number>::Checked(numberBounds)) {
    SetValue(bounds.defaultValue);
}

template <typename Number>
PPDXNumberControl<Number>::PPDXNumberControl(CNTL_TYPE controlType, Settings& settings, int index,
                                             const CString* prefix)
    : PPDXControl(controlType, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    bounds = {Kind<Number>::Read(record, "minimum", 0), Kind<Number>::Read(record, "maximum", 0),
              Kind<Number>::Read(record, "increment", 1), Kind<Number>::Read(record, "default", 0)};
    SetValue(bounds.defaultValue);
    RestoreValue(record);
}

template <typename Number>
PPDXNumberControl<Number>::~PPDXNumberControl() = default;

template <typename Number>
void PPDXNumberControl<Number>::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    Kind<Number>::Write(record, "value", value);
    Kind<Number>::Write(record, "minimum", bounds.minimum);
    Kind<Number>::Write(record, "maximum", bounds.maximum);
    Kind<Number>::Write(record, "increment", bounds.increment);
    Kind<Number>::Write(record, "default", bounds.defaultValue);
}

template <typename Number>
long PPDXNumberControl<Number>::PostScript(unsigned char* out) const {
    const NumberText number = Kind<Number>::PostScriptText(value);
    if (!injectedPS) {
        Inject(Keyword(), PSData(), PSLength(), number.Text(), injectedPS.emplace());
    }
    return GeneratePSOutputData(out, bytesOf(*injectedPS), static_cast<long>(injectedPS->size()),
                                number.View(), true);
}

template <typename Number>
void PPDXNumberControl<Number>::Restore(Settings& settings, int index) {
    RestoreValue(StoredRecord(settings, "Control", index));
}

template <typename Number>
void PPDXNumberControl<Number>::RestoreValue(const StoredRecord& record) {
    if (!record.Has("value")) {
        return;
    }
    const Number stored = Kind<Number>::Read(record, "value", value);
    SetValue(stored);
    if (Kind<Number>::IsHeld(stored, bounds)) {
        value = stored;
    }
}

template <typename Number>
CFStringRef PPDXNumberControl<Number>::CopyCurrentControlValueString() const {
    return cfString(Kind<Number>::ValueText(value).View());
}

template <typename Number>
void PPDXNumberControl<Number>::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        SetValue(Kind<Number>::FromText(text));
    }
}

template <typename Number>
std::string PPDXNumberControl<Number>::DefaultText() const {
    return Kind<Number>::ValueText(bounds.defaultValue).Text();
}

template <typename Number>
void PPDXNumberControl<Number>::SetValue(Number newValue) {
    value = Kind<Number>::Held(newValue, bounds);
    injectedPS.reset();
}

template class PPDXNumberControl<long>;
template class PPDXNumberControl<float>;

} // namespace torka
