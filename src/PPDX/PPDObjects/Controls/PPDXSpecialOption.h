// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

// A value that the description sets for the system itself; users cannot set it.
class PPDXSpecialOption final : public PPDXControl {
public:
    PPDXSpecialOption(const ControlDefinition& definition, const char* value);
    ~PPDXSpecialOption() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() const override;
    // Calling it is a programming error and ends the process.
    void SetCurrentControlWithCFString(CFStringRef text) override;

    // Returns "" when unset.
    const char* GetValue() const;

    // Given interface; no caller here
    PPDXSpecialOption(Settings& settings, int index, const CString* prefix);

private:
    std::unique_ptr<CString> value;
};

} // namespace torka
