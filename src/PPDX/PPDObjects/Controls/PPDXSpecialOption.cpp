// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXSpecialOption.h"

#include "PPDX/PPDObjects/StoredRecord.h"
#include "platform/Log.h"

namespace torka {

PPDXSpecialOption::PPDXSpecialOption(const ControlDefinition& definition, const char* text)
    : PPDXControl(CNTL_TYPE::specialOption, definition)
    , value(text ? std::make_unique<CString>(text) : nullptr) {}

PPDXSpecialOption::PPDXSpecialOption(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::specialOption, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    if (const auto text = record.Text("value")) {
        value = std::make_unique<CString>(text->c_str());
    }
}

PPDXSpecialOption::~PPDXSpecialOption() = default;

void PPDXSpecialOption::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord(settings, "Control", index).SetText("value", value ? value->Buffer() : nullptr);
}

void PPDXSpecialOption::ResetToDefaultValue() { value = std::make_unique<CString>(""); }

void PPDXSpecialOption::Restore(Settings& settings, int index) {
    if (const auto text = StoredRecord(settings, "Control", index).Text("value")) {
        value = std::make_unique<CString>(text->c_str());
    }
}

CFStringRef PPDXSpecialOption::CopyCurrentControlValueString() const { return cfString(GetValue()); }

void PPDXSpecialOption::SetCurrentControlWithCFString(CFStringRef) {
    TORKA_ASSERT(false, "PPDX/PPDObjects/Controls/PPDXSpecialOption");
}

const char* PPDXSpecialOption::GetValue() const { return value && value->Buffer() ? value->Buffer() : ""; }

} // namespace torka
