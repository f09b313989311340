// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Groups/PPDXGroup.h"

namespace torka {

// A group of controls that opens and closes. Refers to its controls.
class PPDXRollDown final : public PPDXGroup {
public:
    using PPDXGroup::PPDXGroup;
    ~PPDXRollDown() override;

    PPDXControls& Controls() { return controls; }
    const PPDXControls& Controls() const { return controls; }

private:
    PPDXControls controls{PPDXControls::Ownership::refers};
};

} // namespace torka
