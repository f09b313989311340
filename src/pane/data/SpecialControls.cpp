// SPDX-License-Identifier: Apache-2.0
#include "pane/data/SpecialControls.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"

namespace torka {

PPDXControl* settingControl(const PPDXControls& controls, const char* keyword) {
    CNTL_TYPE type{};
    PPDXControl* first = controls.Find(keyword, type, true);
    if (!first || type != CNTL_TYPE::jobNote) {
        return type == CNTL_TYPE::specialOption ? nullptr : first;
    }
    for (PPDXControl* control : {static_cast<PPDXControl*>(controls.FindPopup(keyword, true)),
                                 static_cast<PPDXControl*>(controls.FindBoolean(keyword, true)),
                                 static_cast<PPDXControl*>(controls.FindRangeControl(keyword, true)),
                                 static_cast<PPDXControl*>(controls.FindFloatRangeControl(keyword, true))}) {
        if (control) {
            return control;
        }
    }
    return nullptr;
}

} // namespace torka
