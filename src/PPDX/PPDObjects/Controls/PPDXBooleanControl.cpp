// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXBooleanControl.h"

#include "PPDX/PPDObjects/StoredRecord.h"

#include <algorithm>

namespace torka {

namespace {

std::unique_ptr<CString> copyOf(const char* text) { return text ? std::make_unique<CString>(text) : nullptr; }

} // namespace

PPDXBooleanControl::PPDXBooleanControl(const ControlDefinition& definition, bool defaultState,
                                       const BooleanBranch& whenTrue, const BooleanBranch& whenFalse)
    : PPDXControl(CNTL_TYPE::boolean, definition)
    , value(defaultState ? 1 : 0)
    , defaultValue(value)
    , trueText(copyOf(whenTrue.text))
    , falseText(copyOf(whenFalse.text))
    , truePS(whenTrue.psData)
    , truePSLength(whenTrue.psLength)
    , falsePS(whenFalse.psData)
    , falsePSLength(whenFalse.psLength) {
    UpdateKVCache(Keyword(), KeywordOf(value));
}

PPDXBooleanControl::PPDXBooleanControl(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::boolean, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    value = record.Integer("value") != 0 ? 1 : 0;
    defaultValue = record.Integer("default") != 0 ? 1 : 0;
    if (const auto text = record.Text("trueText")) {
        trueText = copyOf(text->c_str());
    }
    if (const auto text = record.Text("falseText")) {
        falseText = copyOf(text->c_str());
    }
    if (const auto bytes = record.Text("truePS")) {
        truePS = KeepBytes(*bytes);
        truePSLength = static_cast<long>(bytes->size());
    }
    if (const auto bytes = record.Text("falsePS")) {
        falsePS = KeepBytes(*bytes);
        falsePSLength = static_cast<long>(bytes->size());
    }
}

PPDXBooleanControl::~PPDXBooleanControl() = default;

void PPDXBooleanControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetInteger("value", value);
    record.SetInteger("default", defaultValue);
    record.SetText("trueText", TrueDisplayText());
    record.SetText("falseText", FalseDisplayText());
    record.SetText("truePS", bytesView(truePS, truePSLength));
    record.SetText("falsePS", bytesView(falsePS, falsePSLength));
}

void PPDXBooleanControl::ResetToDefaultValue() { SetValue(defaultValue != 0); }

long PPDXBooleanControl::PostScript(unsigned char* out) const {
    return GeneratePSOutputData(out, IsTrue() ? truePS : falsePS, IsTrue() ? truePSLength : falsePSLength,
                                KeywordOf(value), true);
}

void PPDXBooleanControl::Restore(Settings& settings, int index) {
    SetValue(StoredRecord(settings, "Control", index).Integer("value", value) != 0);
}

CFStringRef PPDXBooleanControl::CopyCurrentControlValueString() const { return cfString(KeywordOf(value)); }

void PPDXBooleanControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (text) {
        const CFStringRef start =
            CFStringCreateWithSubstring(text, 0, std::min<CFIndex>(4, CFStringGetLength(text)));
        SetValue(CFStringCompare(start, cfString("True"), kCFCompareCaseInsensitive) == 0);
    }
}

void PPDXBooleanControl::SetValue(bool state) {
    value = state ? 1 : 0;
    UpdateKVCache(Keyword(), KeywordOf(value));
}

const char* PPDXBooleanControl::TrueDisplayText() const { return trueText ? trueText->Buffer() : nullptr; }

const char* PPDXBooleanControl::FalseDisplayText() const { return falseText ? falseText->Buffer() : nullptr; }

void PPDXBooleanControl::ReportValue() const { UpdateKVCache(Keyword(), KeywordOf(value)); }

} // namespace torka
