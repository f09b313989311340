// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"

#include "PPDX/PPDObjects/Groups/PPDXScrollPane.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <memory>

namespace torka {

namespace {

constexpr const char* propertyRecord = "Property";
constexpr const char* propertyCount = "Properties.count";

bool isAnyProperty(const PPDXProperty*) { return true; }

} // namespace

PPDXProperty::PPDXProperty(const char* pageKeyword, CFStringRef name, bool isVisible, bool inApp,
                           bool inPrintProp)
    : PPDXElement(pageKeyword, std::move(name), isVisible)
    , showInApp(inApp)
    , showInPrintProp(inPrintProp) {}

PPDXProperty::PPDXProperty(Settings& settings, int index, const CString* prefix)
    : PPDXElement(settings, index, prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : propertyRecord,
                              index);
    showInApp = record.Integer("showInApp", 1) != 0;
    showInPrintProp = record.Integer("showInPrintProp", 1) != 0;
}

PPDXProperty::~PPDXProperty() = default;

void PPDXProperty::Save(Settings& settings, int index) const {
    SaveElement(settings, index, propertyRecord);
    StoredRecord record(settings, propertyRecord, index);
    record.SetInteger("showInApp", showInApp ? 1 : 0);
    record.SetInteger("showInPrintProp", showInPrintProp ? 1 : 0);
    if (scrollDown) {
        record.SetText("scrollPane", scrollDown->Keyword());
    }
}

bool IsPropertyPage(const PPDXElement* element) {
    return dynamic_cast<const PPDXProperty*>(element) != nullptr;
}

bool ShowPropInPrintProp(const PPDXProperty* property) { return property && property->ShowInPrintProp(); }

bool ShowPropInApp(const PPDXProperty* property) { return property && property->ShowInApp(); }

void SetPropertyScrollDown(PPDXProperty* property, PPDXScrollPane* pane) {
    if (property) {
        property->SetScrollDown(pane);
    }
}

PPDXProperties::PPDXProperties() = default;

PPDXProperties::PPDXProperties(Settings& settings, const PPDXGroups* groups) {
    const CString prefix(propertyRecord);
    const std::int64_t count = settings.GetInteger(propertyCount).value_or(0);
    for (int index = 0; index < count; ++index) {
        const StoredRecord record(settings, propertyRecord, index);
        if (!record.Has("showInApp")) {
            break;
        }
        auto property = std::make_unique<PPDXProperty>(settings, index, &prefix);
        const auto paneName = groups ? record.Text("scrollPane") : std::nullopt;
        if (auto* pane =
                paneName ? dynamic_cast<PPDXScrollPane*>(groups->Find(paneName->c_str(), true)) : nullptr) {
            property->SetScrollDown(pane);
            pane->SetParent(property.get());
        }
        Add(property.release());
    }
}

PPDXProperties::~PPDXProperties() {
    list.ForEach([](PPDXProperty* property) { const std::unique_ptr<PPDXProperty> owned(property); });
}

void PPDXProperties::Add(PPDXProperty* property) {
    if (property) {
        list.Add(property);
    }
}

PPDXProperty* PPDXProperties::First() { return list.First(isAnyProperty); }

PPDXProperty* PPDXProperties::Next() { return list.Next(isAnyProperty); }

void PPDXProperties::Save(Settings& settings) const {
    int index = 0;
    ForEach([&](const PPDXProperty* property) { property->Save(settings, index++); });
    settings.SetInteger(propertyCount, index);
}

PPDXProperty* NextProperty(PPDXProperties* properties) { return properties ? properties->Next() : nullptr; }

bool IsPropertyListEmpty(const PPDXProperties* properties) { return !properties || properties->Empty(); }

} // namespace torka
