#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

// A value that the description gives to the system itself; no user sets it.
class PPDXSpecialOption final : public PPDXControl {
public:
    PPDXSpecialOption(const ControlDefinition& definition, const char* value);
    PPDXSpecialOption(Settings& settings, int index, const CString* prefix);
    ~PPDXSpecialOption() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() override;
    // A fault of the caller: ends the process.
    void SetCurrentControlWithCFString(CFStringRef text) override;

    // "" when unset.
    const char* GetValue() const;

private:
    std::unique_ptr<CString> value;
};

} // namespace torka
