// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXCustomPageSizeControl.h"

#include "PPDX/PPDObjects/NumberText.h"
#include "PPDX/PPDObjects/StoredRecord.h"

namespace torka {

namespace {

ControlDefinition withFixedName(ControlDefinition definition) {
    definition.localName = cfString("Custom Page Size");
    definition.visible = true;
    return definition;
}

} // namespace

PPDXCustomPageSizeControl::PPDXCustomPageSizeControl(const ControlDefinition& definition,
                                                     const CustomPageSizeBounds& bounds)
    : PPDXControl(CNTL_TYPE::customPageSize, withFixedName(definition))
    , minWidth(bounds.minWidth)
    , maxWidth(bounds.maxWidth)
    , minHeight(bounds.minHeight)
    , maxHeight(bounds.maxHeight) {}

PPDXCustomPageSizeControl::PPDXCustomPageSizeControl(Settings& settings, int index, const CString* prefix)
    : PPDXControl(CNTL_TYPE::customPageSize, settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    width = record.Real("width");
    height = record.Real("height");
    minWidth = record.Real("minWidth");
    maxWidth = record.Real("maxWidth");
    minHeight = record.Real("minHeight");
    maxHeight = record.Real("maxHeight");
}

PPDXCustomPageSizeControl::~PPDXCustomPageSizeControl() = default;

void PPDXCustomPageSizeControl::Save(Settings& settings, const int& index) const {
    PPDXControl::Save(settings, index);
    StoredRecord record(settings, "Control", index);
    record.SetReal("width", static_cast<double>(width));
    record.SetReal("height", static_cast<double>(height));
    record.SetReal("minWidth", static_cast<double>(minWidth));
    record.SetReal("maxWidth", static_cast<double>(maxWidth));
    record.SetReal("minHeight", static_cast<double>(minHeight));
    record.SetReal("maxHeight", static_cast<double>(maxHeight));
}

void PPDXCustomPageSizeControl::ResetToDefaultValue() {}

void PPDXCustomPageSizeControl::Restore(Settings& settings, int index) {
    const StoredRecord record(settings, "Control", index);
    if (record.Has("width") && record.Has("height")) {
        width = record.Real("width");
        height = record.Real("height");
    }
}

CFStringRef PPDXCustomPageSizeControl::CopyCurrentControlValueString() const {
    std::string text(NumberText(width, 6).View());
    text += ' ';
    text += NumberText(height, 6).View();
    return cfString(text);
}

void PPDXCustomPageSizeControl::SetCurrentControlWithCFString(CFStringRef text) {
    if (!text) {
        return;
    }
    width = nearestFloat(CFStringGetDoubleValue(text));
    const std::size_t blank = text->units.find(u' ');
    if (blank != std::u16string::npos) {
        const std::u16string_view rest = std::u16string_view(text->units).substr(blank + 1);
        height = nearestFloat(CFStringGetDoubleValue(CFStringCreateWithCharacters(rest)));
    }
}

} // namespace torka
