// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/PPDXElement.h"

namespace torka {

// A named part of a page of options.
class PPDXGroup : public PPDXElement {
public:
    PPDXGroup(const char* keyword, CFStringRef localName, bool visible);
    ~PPDXGroup() override;

    // Given interface; no caller here
    PPDXGroup(Settings& settings, int index, const CString* prefix);
    void Save(Settings& settings, int index) const;
};

} // namespace torka
