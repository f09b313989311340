#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

#include <optional>

namespace torka {

class StoredRecord;

struct RangeBounds {
    long minimum = 0;
    long maximum = 0;
    long increment = 1;
    long defaultValue = 0;
};

// A whole number between bounds, inserted into a PostScript template.
class PPDXRangeControl final : public PPDXControl {
public:
    PPDXRangeControl(const ControlDefinition& definition, const RangeBounds& bounds);
    PPDXRangeControl(Settings& settings, int index, const CString* prefix);
    ~PPDXRangeControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    long PostScript(unsigned char* out) override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() override;
    void SetCurrentControlWithCFString(CFStringRef text) override;

    long MinVal() const { return minimum; }
    long MaxVal() const { return maximum; }
    long Increment() const { return increment; }
    long DefaultValue() const { return defaultValue; }
    long GetValue() const { return value; }
    // Rounds toward zero to a multiple of the increment, then raises to the minimum, then lowers to the
    // maximum.
    void SetValue(long newValue);

private:
    void RestoreValue(const StoredRecord& record);

    long value;
    long minimum;
    long maximum;
    long increment;
    long defaultValue;
    std::optional<std::string> injectedPS; // of the current value
};

} // namespace torka
