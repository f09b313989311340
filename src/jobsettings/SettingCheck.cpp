// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/SettingCheck.h"

#include "PPDX/PPDObjects/Controls/ColourKeywords.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Controls/PPDXPopupControl.h"
#include "PPDX/PPDObjects/NumberText.h"
#include "output/ZANWatermark.h"

#include <algorithm>
#include <cmath>

namespace torka {

namespace {

std::string keywordOf(const PPDXControl& control) {
    return control.Keyword() == nullptr ? "" : control.Keyword();
}

bool isNumber(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::range || control.Type() == CNTL_TYPE::floatRange;
}

} // namespace

Result<void> checkSettingValue(const PPDXControl& control, std::string_view value, const std::string& shown) {
    const std::string keyword = keywordOf(control);
    if (control.Type() == CNTL_TYPE::specialOption) {
        return Fault{keyword + " is given by the description and cannot be set"};
    }
    if (control.Type() == CNTL_TYPE::boolean && !truthOf(value)) {
        return Fault{keyword + " takes True or False, not " + shown};
    }
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control);
        popup != nullptr && !isOpenColourPopup(keyword) &&
        popup->GetKeywordCFLocalName(std::string(value).c_str()) == nullptr) {
        return Fault{keyword + " does not offer " + shown};
    }
    if (isNumber(control) && !numberOf(value)) {
        return Fault{keyword + " takes a number, not " + shown};
    }
    if (const auto* size = dynamic_cast<const PPDXCustomPageSizeControl*>(&control);
        size != nullptr && !sizeFor(*size, value)) {
        return Fault{keyword + " takes no size " + shown};
    }
    return {};
}

std::optional<OptionSize> sizeFor(const PPDXCustomPageSizeControl& control, std::string_view value) {
    const std::optional<OptionSize> size = sizeOf(value);
    const auto isWithin = [](double points, float least, float most) {
        return points >= static_cast<double>(least) - 0.5 && points <= static_cast<double>(most) + 0.5;
    };
    return size && isWithin(size->width, control.MinWidth(), control.MaxWidth()) &&
                   isWithin(size->height, control.MinHeight(), control.MaxHeight())
               ? size
               : std::nullopt;
}

std::string controlText(const PPDXControl& control, std::string_view value) {
    if (isNumber(control)) {
        return std::string(value.substr(value.starts_with('+') ? 1 : 0));
    }
    if (const std::optional<bool> truth = truthOf(value); truth && control.Type() == CNTL_TYPE::boolean) {
        return *truth ? "True" : "False";
    }
    if (const auto* custom = dynamic_cast<const PPDXCustomPageSizeControl*>(&control)) {
        if (const std::optional<OptionSize> size = sizeFor(*custom, value)) {
            constexpr int decimals = 6;
            return std::string(NumberText(nearestFloat(size->width), decimals).View()) + " " +
                   std::string(NumberText(nearestFloat(size->height), decimals).View());
        }
    }
    return std::string(value);
}

std::string changedNumber(const PPDXControl& control, std::string_view value, const std::string& shown) {
    const std::optional<double> number = isNumber(control) ? numberOf(value) : std::nullopt;
    if (!number) {
        return {};
    }
    // A float has seven digits, and the text of one three decimals.
    const std::string held = utf8Text(control.CopyCurrentControlValueString());
    const double difference = std::abs(numberOf(held).value_or(0) - *number);
    return difference > std::abs(*number) * 1e-5 + 5e-4
               ? keywordOf(control) + " does not take " + shown + ", but " + held
               : "";
}

bool isWatermarkDefinition(std::string_view text) {
    constexpr std::ptrdiff_t commas = 14;
    return std::ranges::count(text, ',') >= commas && text.size() < watermarkDefinitionSize;
}

} // namespace torka
