// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/TorkaFeaturesPDE.h"

#include "PPDX/PPDObjects/Controls/PPDXCustomPageSizeControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "jobsettings/SettingCheck.h"
#include "output/ZANJobNote.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/PDEData.h"
#include "platform/Log.h"
#include "platform/PropertyList.h"
#include "platform/System.h"

#include <array>

// The automation presets file. Its settings are applied to every new pane, before a person sees it.

namespace torka {

namespace {

constexpr std::size_t maximumFileBytes = std::size_t{1024} * 1024;
constexpr std::string_view systemFile = "/Library/Preferences/ZAN/automation.plist";

// The value in the form that the controls take; null for a value of another kind.
CFStringRef settingText(const CFTypeRef& value) {
    if (auto text = cfCast<CFString>(value)) {
        return text;
    }
    if (const auto state = cfCast<CFBoolean>(value)) {
        return cfString(state->value ? "True" : "False");
    }
    const auto number = cfCast<CFNumber>(value);
    return number && !number->isReal ? cfString(std::to_string(number->integer)) : nullptr;
}

// Returns why the setting does not have the value then; "" when it has.
std::string set(ZANPPD& model, PDEData& data, const std::string& name, const CFStringRef& text) {
    PPDXControl* control = model.GetPPDXControlForKey(cfString(name.starts_with('*') ? name : "*" + name));
    if (control == nullptr || control->Keyword() == nullptr) {
        return "the description has no such setting";
    }
    if (isSecretNote(model, control)) {
        return "a secret is not taken from a file";
    }
    if (data.dmtLocks(control->Keyword())) {
        return "the administrator has fixed this setting";
    }
    if (!text) {
        return "the value is no text, whole number or boolean";
    }
    const std::string wanted = utf8Text(text);
    if (!setControlValueText(*control, wanted)) {
        return "it does not take this value";
    }
    const auto* size = dynamic_cast<const PPDXCustomPageSizeControl*>(control);
    const std::string value = controlValueText(*control);
    const bool isCut = (control->Type() == CNTL_TYPE::jobNote && value != wanted) ||
                       !changedNumber(*control, wanted, wanted).empty() ||
                       (size != nullptr && !sizeFor(*size, wanted));
    return isCut ? "it holds only \"" + value + "\"" : "";
}

void apply(ZANPPD& model, PDEData& data, const CFDictionary& settings, const std::filesystem::path& place) {
    for (const auto& [key, value] : settings.Pairs()) {
        const std::string name = utf8Text(key);
        if (const std::string reason = set(model, data, name, settingText(value)); !reason.empty()) {
            myNSLogC("%s: %s: %s", place.c_str(), name.c_str(), reason.c_str());
        }
    }
}

} // namespace

void TorkaFeaturesPDE::loadAutomationFileAndLoadPrintSetting() {
    // The person's own file takes precedence over the file of the machine.
    const std::array<std::filesystem::path, 2> places{system().ConfigFolder() / "torka" / "automation.plist",
                                                      system().Resolve(systemFile)};
    for (const std::filesystem::path& place : places) {
        std::string content;
        const std::error_code failure = system().ReadFile(place, maximumFileBytes, content);
        if (failure == std::errc::no_such_file_or_directory) {
            continue;
        }
        std::string reason = failure.message();
        CFDictionaryRef settings;
        if (!failure) {
            reason = "it holds no dictionary";
            settings = cfCast<CFDictionary>(
                CFPropertyListCreateFromXMLData(CFDataCreate(content.data(), content.size()), &reason));
        }
        if (settings) {
            apply(*self.myppd, *self.myPDEData, *settings, place);
        } else {
            myNSLogC("The automation presets file %s cannot be used: %s", place.c_str(), reason.c_str());
        }
        return;
    }
}

} // namespace torka
