// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/StandingSettings.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "jobsettings/OptionSettings.h"
#include "jobsettings/OptionText.h"

#include <algorithm>
#include <array>

namespace torka {

namespace {

bool isChosenByPrograms(std::string_view name) {
    constexpr std::array<std::string_view, 3> names{"PageSize", "QVOrientation", "Collate"};
    return std::ranges::any_of(names, [name](std::string_view each) { return isSameAscii(each, name); });
}

} // namespace

bool isStandingSetting(const ZANPPD& description, std::string_view name) {
    name.remove_prefix(name.starts_with('*') ? 1 : 0);
    if (name == "torka-watermark" || name == "torka-conflicts") {
        return true;
    }
    const std::string keyword = "*" + std::string(name);
    bool isFound = false;
    description.GetControls()->ForEach([&](const PPDXControl* control) {
        isFound = isFound || (control->Keyword() != nullptr && isSameAscii(control->Keyword(), keyword));
    });
    return isFound;
}

bool isFormerSetting(const ZANPPD& description, std::string_view name) {
    constexpr std::array<std::string_view, 6> fixed{"Notes1",   "Notes2",       "Notes3",
                                                    "Instruct", "ZANPrintTime", "CustomPrintSize"};
    const bool isFixed =
        std::ranges::any_of(fixed, [name](std::string_view each) { return isSameAscii(each, name); });
    return !isStandingSetting(description, name) && (isFixed || OptionSettings::LooksLikeSetting(name));
}

Result<platform::StandingOptionList>
standingSettings(platform::Spooler& spooler, const std::string& destination, const ZANPPD& description) {
    Result<platform::StandingOptionList> options = spooler.StandingOptions(destination);
    if (!options) {
        return options;
    }
    std::erase_if(*options, [&](const auto& option) {
        return !isStandingSetting(description, option.first) && !isFormerSetting(description, option.first);
    });
    return options;
}

std::string replaceStandingSettings(platform::Spooler& spooler, const std::string& destination,
                                    const ZANPPD& description, const platform::StandingOptionList& settings) {
    const Result<platform::StandingOptionList> kept = standingSettings(spooler, destination, description);
    if (!kept) {
        return kept.Why().Line();
    }
    std::vector<std::string> former;
    for (const auto& [name, value] : *kept) {
        if (!isChosenByPrograms(name)) {
            former.push_back(name);
        }
    }
    return spooler.ChangeStandingOptions(destination, former, settings);
}

} // namespace torka
