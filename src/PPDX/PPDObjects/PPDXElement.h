// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/Utilities/CString.h"
#include "PPDX/Utilities/ModelState.h"
#include "platform/CoreFoundation.h"

#include <cstdint>
#include <memory>

namespace torka {

class Settings;

// The base of every control, group and property page: a keyword, a displayed name, and a place in the tree.
// Owns its texts; refers to its parent. Cannot be copied or moved, because lists and children point to it.
class PPDXElement {
public:
    // An empty or null keyword makes an element without one. REQUIRES: inLocalName is not null.
    PPDXElement(const char* keyword, CFStringRef inLocalName, bool visible);
    PPDXElement(const PPDXElement&) = delete;
    PPDXElement& operator=(const PPDXElement&) = delete;
    virtual ~PPDXElement();

    // Returns true by options: 0: visible and not an orphan; 1: visible; 2: not an orphan; otherwise always.
    virtual bool OkayToDisplay(const _DISPLAY_OPTIONS_& options) const;

    // Returns the PPD main keyword with its leading "*", or null.
    const char* Keyword() const { return keyword ? keyword->Buffer() : nullptr; }
    // Returns the keyword as a string object, made once; null without a keyword.
    const CFStringRef& CFStringKeyword() const;
    std::size_t KeywordLength() const { return keyword ? keyword->Size() : 0; }
    const CFStringRef& CFStringUserName() const { return localName; }
    bool IsVisible() const { return visible != 0; }
    bool IsOrphan() const { return parent == nullptr; }
    PPDXElement* GetParent() const { return parent; }
    void SetParent(PPDXElement* newParent) { parent = newParent; }

    // Compare keywords; false when either has none.
    bool operator==(const char* otherKeyword) const;

    // Given interface; no caller here
    // Rebuilds what Save() stored under `prefix` and `index`.
    PPDXElement(Settings& settings, int index, const CString* prefix);
    // Returns the local name in the system encoding; valid as long as the element.
    const char* UserName() const;
    // Compare keywords; false when either has none.
    bool operator==(const PPDXElement& other) const;

protected:
    void SaveElement(Settings& settings, int index, const char* prefix) const;

private:
    std::unique_ptr<CString> keyword;
    mutable std::unique_ptr<CString> userNameCache;
    CFStringRef localName;
    std::int32_t visible;
    PPDXElement* parent = nullptr;
    mutable CFStringRef keywordString;
};

} // namespace torka
