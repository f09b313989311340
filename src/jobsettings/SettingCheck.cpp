// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/SettingCheck.h"

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"

namespace torka {

Result<void> checkSettingValue(const PPDXControl& control, std::string_view value, const std::string& shown) {
    const std::string keyword = control.Keyword() == nullptr ? "" : control.Keyword();
    if (control.Type() == CNTL_TYPE::specialOption) {
        return Fault{keyword + " is given by the description and cannot be set"};
    }
    if (control.Type() == CNTL_TYPE::boolean && value != "True" && value != "False") {
        return Fault{keyword + " takes True or False, not " + shown};
    }
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control);
        popup != nullptr && !isOpenColourPopup(keyword) &&
        popup->GetKeywordCFLocalName(std::string(value).c_str()) == nullptr) {
        return Fault{keyword + " does not offer " + shown};
    }
    return {};
}

} // namespace torka
