// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Groups/PPDXGroups.h"

namespace torka {

// The scrolling part of a property page. Refers to its roll-downs.
class PPDXScrollPane final : public PPDXGroup {
public:
    using PPDXGroup::PPDXGroup;
    ~PPDXScrollPane() override;

    PPDXGroups& RollDowns() { return rollDowns; }
    const PPDXGroups& RollDowns() const { return rollDowns; }

private:
    PPDXGroups rollDowns{PPDXGroups::Ownership::refers};
};

} // namespace torka
