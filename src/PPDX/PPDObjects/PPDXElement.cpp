// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/PPDXElement.h"

#include "PPDX/PPDObjects/StoredRecord.h"
#include "TextConverter.h"
#include "platform/Log.h"

#include <cstring>
#include <utility>

namespace torka {

PPDXElement::PPDXElement(const char* newKeyword, CFStringRef inLocalName, bool isVisible)
    : localName(std::move(inLocalName))
    , visible(isVisible ? 1 : 0) {
    if (localName == nullptr) {
        platform::assertionFailed("inLocalName != NULL", "PPDX/PPDObjects/PPDXElement");
    }
    if (newKeyword && *newKeyword != '\0') {
        keyword = std::make_unique<CString>(newKeyword);
    }
}

PPDXElement::PPDXElement(Settings& settings, int index, const CString* prefix) {
    const StoredRecord record(settings, prefix && prefix->Buffer() ? prefix->Buffer() : "Control", index);
    const std::string stored = record.Text("keyword").value_or("");
    if (!stored.empty()) {
        keyword = std::make_unique<CString>(stored.c_str());
    }
    localName = cfString(record.Text("name").value_or(stored));
    visible = record.Integer("visible", 1) != 0 ? 1 : 0;
}

PPDXElement::~PPDXElement() = default;

bool PPDXElement::OkayToDisplay(const _DISPLAY_OPTIONS_& options) const {
    switch (options) {
    case 0:
        return IsVisible() && !IsOrphan();
    case kDisplayOrphans:
        return IsVisible();
    case kDisplayHidden:
        return !IsOrphan();
    default:
        return true;
    }
}

const CFStringRef& PPDXElement::CFStringKeyword() const {
    if (!keywordString && keyword) {
        keywordString = cfString(Keyword());
    }
    return keywordString;
}

const char* PPDXElement::UserName() const {
    if (!userNameCache) {
        const CFIndex units = CFStringGetLength(localName);
        userNameCache = std::make_unique<CString>("");
        if (units > 0) {
            const std::size_t size = 4 * static_cast<std::size_t>(units);
            std::string name(size, '\0');
            TextConverter::CFStringToCstring(localName, name.data(), static_cast<long>(size));
            *userNameCache = name.c_str();
        }
    }
    return userNameCache->Buffer();
}

bool PPDXElement::operator==(const PPDXElement& other) const { return *this == other.Keyword(); }

bool PPDXElement::operator==(const char* otherKeyword) const {
    const char* own = Keyword();
    return own && otherKeyword && std::strcmp(own, otherKeyword) == 0;
}

void PPDXElement::SaveElement(Settings& settings, int index, const char* prefix) const {
    StoredRecord record(settings, prefix, index);
    record.SetText("keyword", Keyword());
    record.SetText("name", std::string_view(utf8Text(localName)));
    record.SetInteger("visible", visible);
    if (parent) {
        record.SetText("parent", parent->Keyword());
    }
}

} // namespace torka
