// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControl.h"

namespace torka {

// The PostScript of one state of a boolean. The parser owns the bytes.
struct BooleanBranch {
    const char* text = nullptr; // the displayed text; copied, may be null
    const unsigned char* psData = nullptr;
    long psLength = 0;
};

// A check box, with the option keywords "True" and "False".
class PPDXBooleanControl final : public PPDXControl {
public:
    PPDXBooleanControl(const ControlDefinition& definition, bool defaultState, const BooleanBranch& whenTrue,
                       const BooleanBranch& whenFalse);
    ~PPDXBooleanControl() override;

    void Save(Settings& settings, const int& index) const override;
    void ResetToDefaultValue() override;
    long PostScript(unsigned char* out) const override;
    void Restore(Settings& settings, int index) override;
    CFStringRef CopyCurrentControlValueString() const override;
    std::string DefaultText() const override { return KeywordOf(defaultValue); }
    // Sets the state to true when the text begins with "True" in any letter case, else to false.
    void SetCurrentControlWithCFString(CFStringRef text) override;

    bool IsTrue() const { return value != 0; }
    void SetValue(bool state);
    // Return null when the description has no such text.
    const char* TrueDisplayText() const;
    const char* FalseDisplayText() const;
    // The bytes that the job holds for the state; empty for none.
    std::string_view Code(bool state) const {
        const unsigned char* code = state ? truePS : falsePS;
        const long length = state ? truePSLength : falsePSLength;
        return code == nullptr
                   ? std::string_view()
                   : std::string_view(reinterpret_cast<const char*>(code), static_cast<std::size_t>(length));
    }

    // Given interface; no caller here
    bool DefaultState() const { return defaultValue != 0; }
    PPDXBooleanControl(Settings& settings, int index, const CString* prefix);
    void SetDefaultValue(bool state) { defaultValue = state ? 1 : 0; }

private:
    void ReportValue() const override;
    static const char* KeywordOf(std::int32_t state) { return state != 0 ? "True" : "False"; }

    std::int32_t value;
    std::int32_t defaultValue;
    std::unique_ptr<CString> trueText;
    std::unique_ptr<CString> falseText;
    const unsigned char* truePS = nullptr;
    long truePSLength = 0;
    const unsigned char* falsePS = nullptr;
    long falsePSLength = 0;
};

} // namespace torka
