#include "PPDX/PPDObjects/Controls/PPDXRangeControl.h"

#include "PPDX/PPDObjects/NumberText.h"
#include "PPDX/PPDObjects/StoredRecord.h"

namespace torka {

PPDXRangeControl::PPDXRangeControl(const ControlDefinition& definition, const RangeBounds& bounds)
    : PPDXControl(CNTL_TYPE::range, definition)
    , value(0)
    , minimum(bounds.minimum)
    , maximum(bounds.maximum)
    , increment(bounds.increment)
    , defaultValue(bounds.defaultValue) {
    SetValue(defaultValue);
}

PPDXRangeControl::PPDXRangeControl(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::range, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    minimum = record.Integer("minimum");
    maximum = record.Integer("maximum");
    increment = record.Integer("increment", 1);
    defaultValue = record.Integer("default");
    SetValue(defaultValue);
    RestoreValue(record);
}

PPDXRangeControl::~PPDXRangeControl() = default;

void PPDXRangeControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetInteger("value", value);
    record.SetInteger("minimum", minimum);
    record.SetInteger("maximum", maximum);
    record.SetInteger("increment", increment);
    record.SetInteger("default", defaultValue);
}

void PPDXRangeControl::ResetToDefaultValue() { SetValue(defaultValue); }

long PPDXRangeControl::PostScript(unsigned char* out) {
    const NumberText number(value);
    if (!injectedPS) {
        Inject(Keyword(), PSData(), PSLength(), number.Text(), injectedPS.emplace());
    }
    return GeneratePSOutputData(out, bytesOf(*injectedPS), static_cast<long>(injectedPS->size()),
                                number.View(), true);
}

void PPDXRangeControl::Restore(Settings& settings, int index) {
    RestoreValue(StoredRecord(settings, "Control", index));
}

void PPDXRangeControl::RestoreValue(const StoredRecord& record) {
    const long stored = record.Integer("value", value);
    if (stored == maximum || (stored == minimum && minimum < maximum)) {
        // SetValue may have stopped at a bound that is not a multiple of the increment. A second call would
        // round it away.
        value = stored;
        injectedPS.reset();
    } else {
        SetValue(stored);
    }
}

CFStringRef PPDXRangeControl::CopyCurrentControlValueString() { return cfString(NumberText(value).View()); }

void PPDXRangeControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        SetValue(CFStringGetIntValue(text));
    }
}

void PPDXRangeControl::SetValue(long newValue) {
    // Increments of 1 and -1 need no rounding, and the smallest number % -1 overflows. 0 cannot divide.
    if (increment < -1 || increment > 1) {
        newValue -= newValue % increment;
    }
    if (newValue < minimum) {
        newValue = minimum;
    }
    if (newValue > maximum) {
        newValue = maximum;
    }
    value = newValue;
    injectedPS.reset();
}

} // namespace torka
