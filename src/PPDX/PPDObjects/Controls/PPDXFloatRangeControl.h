#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include <optional>

namespace torka {

class StoredRecord;

struct FloatRangeBounds {
    float minimum = 0;
    float maximum = 0;
    float increment = 1;
    float defaultValue = 0;
};

// A decimal number between bounds, inserted into a PostScript template. The increment is only for the user
// interface.
class PPDXFloatRangeControl final : public PPDXControl {
public:
    PPDXFloatRangeControl(const ControlDefinition& definition, const FloatRangeBounds& bounds);
    PPDXFloatRangeControl(Settings& settings, int index, const CString* prefix);
    ~PPDXFloatRangeControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    long PostScript(unsigned char* out) override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() override;
    void SetCurrentControlWithCFString(CFStringRef text) override;

    float MinVal() const { return minimum; }
    float MaxVal() const { return maximum; }
    float Increment() const { return increment; }
    float DefaultValue() const { return defaultValue; }
    float GetValue() const { return value; }
    // Clamps the value to the minimum, then to the maximum, and does not round it to a multiple of the
    // increment. NaN becomes the minimum.
    void SetValue(float newValue);

private:
    void RestoreValue(const StoredRecord& record);

    float value;
    float minimum;
    float maximum;
    float increment;
    float defaultValue;
    std::optional<std::string> injectedPS; // of the current value
};

} // namespace torka
