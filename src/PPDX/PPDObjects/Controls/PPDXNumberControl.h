// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include <optional>

namespace torka {

class StoredRecord;

template <typename Number>
struct NumberBounds {
    Number minimum = 0;
    Number maximum = 0;
    Number increment = 1;
    Number defaultValue = 0;
};

// A number between bounds, inserted into a PostScript template. Number is long or float.
template <typename Number>
class PPDXNumberControl : public PPDXControl {
public:
    PPDXNumberControl(CNTL_TYPE controlType, const ControlDefinition& definition,
                      NumberBounds<Number> numberBounds);
    PPDXNumberControl(CNTL_TYPE controlType, Settings& settings, int index, const CString* prefix);
    ~PPDXNumberControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override { SetValue(bounds.defaultValue); }
    long PostScript(unsigned char* out) const override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() const override;
    void SetCurrentControlWithCFString(CFStringRef text) override;
    std::string DefaultText() const override;

    Number MinVal() const { return bounds.minimum; }
    Number MaxVal() const { return bounds.maximum; }
    Number Increment() const { return bounds.increment; }
    Number DefaultValue() const { return bounds.defaultValue; }
    Number GetValue() const { return value; }
    // Adjusts the value to the bounds; PPDXRangeControl and PPDXFloatRangeControl say how.
    void SetValue(Number newValue);

private:
    void RestoreValue(const StoredRecord& record);

    NumberBounds<Number> bounds;
    Number value = 0;
    mutable std::optional<std::string> injectedPS; // of the current value; made when asked for
};

extern template class PPDXNumberControl<long>;
extern template class PPDXNumberControl<float>;

} // namespace torka
