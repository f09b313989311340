// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/PPDXElement.h"

namespace torka {

class PPDXScrollPane;

// A property page: the top of the three levels in which options are shown. Refers to its scroll pane.
class PPDXProperty final : public PPDXElement {
public:
    PPDXProperty(const char* keyword, CFStringRef localName, bool visible, bool showInApp,
                 bool showInPrintProp);
    ~PPDXProperty() override;

    // Returns null until a pane is placed.
    PPDXScrollPane* GetScrollDown() const { return scrollDown; }
    void SetScrollDown(PPDXScrollPane* pane) { scrollDown = pane; }
    bool ShowInApp() const { return showInApp; }
    bool ShowInPrintProp() const { return showInPrintProp; }

    // Given interface; no caller here
    PPDXProperty(Settings& settings, int index, const CString* prefix);
    void Save(Settings& settings, int index) const;

private:
    PPDXScrollPane* scrollDown = nullptr;
    bool showInApp;
    bool showInPrintProp;
};

// Does nothing for a null property.
void SetPropertyScrollDown(PPDXProperty* property, PPDXScrollPane* pane);

// Given interface; no caller here
// Return false for null.
bool IsPropertyPage(const PPDXElement* element);
bool ShowPropInPrintProp(const PPDXProperty* property);
bool ShowPropInApp(const PPDXProperty* property);

} // namespace torka
