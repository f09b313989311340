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

// A decimal number between bounds, put into a PostScript template. The increment steps the user interface
// only.
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
    // Up to the minimum, then down to the maximum; not moved onto the increment's grid. What is no number is
    // the minimum.
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
