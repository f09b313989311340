// SPDX-License-Identifier: Apache-2.0
#include "jobsettings/OptionSettings.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictResolution.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/FixedControls.h"
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "jobsettings/Findings.h"
#include "jobsettings/OptionText.h"
#include "jobsettings/ServerOptions.h"
#include "jobsettings/SettingCheck.h"
#include "output/ZANJobNote.h"
#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace torka {

namespace {

constexpr std::string_view watermarkOption = "torka-watermark";
constexpr std::string_view conflictsOption = "torka-conflicts";
constexpr const char* pageSizeKeyword = "*PageSize";

std::string_view withoutAsterisk(std::string_view name) {
    return name.starts_with('*') ? name.substr(1) : name;
}

std::string nameOf(const PPDXControl& control) {
    return std::string(withoutAsterisk(control.Keyword() == nullptr ? "" : control.Keyword()));
}

std::string valueOf(const PPDXControl& control) { return utf8Text(control.CopyCurrentControlValueString()); }

bool isChoiceControl(const PPDXControl* control) {
    return control != nullptr &&
           (control->Type() == CNTL_TYPE::popup || control->Type() == CNTL_TYPE::boolean);
}

// The spelling that the list has for a choice; "" when it has none.
std::string spelling(const PPDXPopupControl& popup, std::string_view value) {
    std::string found;
    popup.ForEachItem([&](const _PopupItem& item) {
        if (item.keyword.View() == value || (found.empty() && isSameAscii(item.keyword.View(), value))) {
            found = item.keyword.View();
        }
    });
    return found;
}

// The three settings that the print server decides by its own filters; the description only shows them.
bool isServersSetting(const PPDXControl& control) {
    return control == pageSizeKeyword || control == "*PageRegion" || control == "*Collate";
}

} // namespace

OptionSettings::OptionSettings(ZANPPD& model, QueueFacts queueFacts)
    : description(model)
    , facts(std::move(queueFacts))
    , settings(std::make_shared<platform::MemoryPrintSettings>()) {
    description.GetControls()->ForEach([this](PPDXControl* control) {
        if (control->Keyword() != nullptr) {
            byName.try_emplace(lowerCaseAscii(withoutAsterisk(control->Keyword())), control);
        }
    });
}

OptionSettings::~OptionSettings() = default;

bool OptionSettings::IsServersOwn(std::string_view name) {
    // Sorted. Options of RFC 8011, PWG 5100.x and CUPS that jobs usually have.
    static constexpr std::array<std::string_view, 21> names{"ConversionDone",
                                                            "attributes-charset",
                                                            "attributes-natural-language",
                                                            "collate",
                                                            "com.apple.print.DocumentTicket.PMSpoolFormat",
                                                            "copies",
                                                            "document-format",
                                                            "document-name",
                                                            "finishings",
                                                            "fit-to-page",
                                                            "job-hold-until",
                                                            "job-name",
                                                            "job-priority",
                                                            "job-sheets",
                                                            "job-uuid",
                                                            "landscape",
                                                            "media",
                                                            "number-up",
                                                            "number-up-layout",
                                                            "page-ranges",
                                                            "scaling"};
    static_assert(std::ranges::is_sorted(names));
    static constexpr std::array<std::string_view, 14> beginnings{
        "ZAN.PSData.", "com.",         "cupsJob",    "date-time-at-", "document-", "finishings-", "job-",
        "number-up-",  "orientation-", "output-bin", "page-",         "print-",    "pdf",         "time-at-"};
    return std::ranges::binary_search(names, name) ||
           std::ranges::any_of(beginnings, [name](std::string_view each) { return name.starts_with(each); });
}

bool OptionSettings::LooksLikeSetting(std::string_view name) {
    return (name.starts_with('*') && name.size() > 1) || isSameAscii(name.substr(0, 2), "QV") ||
           (name.starts_with("torka-") && name != "torka-ticket" && name != conflictsOption);
}

bool OptionSettings::IsLeftAlone(std::string_view name) {
    return IsServersOwn(name) || name == "PageSize" || name == "PageRegion" || name == "Collate";
}

PPDXControl* OptionSettings::Find(std::string_view name) const {
    const std::string plain(withoutAsterisk(name));
    CNTL_TYPE type{};
    if (PPDXControl* exact = description.GetControls()->Find(("*" + plain).c_str(), type, true)) {
        return exact;
    }
    const auto found = byName.find(lowerCaseAscii(plain));
    return found == byName.end() ? nullptr : found->second;
}

// Options of the print server's own never mean a setting, although some names could be those of one.
PPDXControl* OptionSettings::FindSetting(std::string_view name) const {
    return IsServersOwn(name) ? nullptr : Find(name);
}

bool OptionSettings::NamesSettings(const OptionMap& options) const {
    return std::ranges::any_of(options, [this](const auto& option) {
        const auto& [name, value] = option;
        if (name == "sides") {
            return ChangesSides(value);
        }
        if (name == watermarkOption || name == conflictsOption) {
            return name != conflictsOption || !isSameAscii(value, "print");
        }
        const PPDXControl* control = FindSetting(name);
        return control == nullptr ? LooksLikeSetting(name)
                                  : !isServersSetting(*control) || name.starts_with('*');
    });
}

// The print server knows the keyword Duplex itself. Many programs say "one-sided" with every job.
bool OptionSettings::ChangesSides(std::string_view sides) const {
    constexpr std::array<std::string_view, 4> oneSided{"None", "Off", "False", "Simplex"};
    const PPDXPopupControl* duplex = description.GetControls()->FindPopup("*QVDuplex", true);
    return duplex != nullptr &&
           !(sides == "one-sided" && std::ranges::find(oneSided, valueOf(*duplex)) != oneSided.end());
}

void OptionSettings::LeaveSecretsOut() {
    takesSecrets = false;
    description.GetControls()->ForEach([this](PPDXControl* control) {
        if (auto* note = dynamic_cast<PPDXJobNote*>(control);
            note != nullptr && isSecretNote(description, note)) {
            note->SetNotes("");
        }
    });
}

void OptionSettings::Take(const OptionMap& options, const ServerChoices& server) {
    serverChoices = server;
    TakeServerChoices();
    for (const auto& [name, value] : options) {
        if (name == watermarkOption || name == conflictsOption) {
            TakeOwnOption(name, value);
        } else if (PPDXControl* control = FindSetting(name)) {
            if (!IsLost(*control, name, value)) {
                TakeValue(*control, value);
            }
        } else if (LooksLikeSetting(name)) {
            Remark("the description has no setting " + name);
        }
    }
    TakeLayout(options);
}

// The print server's filters know no name with an asterisk. They have laid out the pages without it.
bool OptionSettings::IsLost(const PPDXControl& control, std::string_view name, const std::string& value) {
    if (!facts.isLaidOut || !name.starts_with('*') || !isServersSetting(control)) {
        return false;
    }
    if (!isSameAscii(valueOf(control), value)) {
        Remark(std::string(name) + "=" + value + " is not followed: the print server takes " +
               nameOf(control) + " without asterisk only");
    }
    return true;
}

// The page size may come as media, the tray and the medium too.
void OptionSettings::TakeServerChoices() {
    const auto region = serverChoices.find("PageRegion");
    if (region != serverChoices.end() && !serverChoices.contains("PageSize")) {
        serverChoices["PageSize"] = region->second;
    }
    for (const auto& [keyword, choices] : serverChoices) {
        PPDXControl* control = Find(keyword);
        if (isChoiceControl(control) && choices.size() == 1) {
            control->SetCurrentControlWithCFString(cfString(choices.front()));
        }
        // A custom size is in no constraint.
        if (keyword == "PageSize" && !choices.empty() && isSameAscii(choices.front(), "Custom")) {
            description.GetUIConstraints()->UpdateKVCache(pageSizeKeyword, "Custom");
        }
    }
}

void OptionSettings::TakeOwnOption(std::string_view name, const std::string& value) {
    if (name == watermarkOption) {
        TakeWatermark(value);
        return;
    }
    constexpr std::array<std::pair<std::string_view, ConflictPolicy>, 3> policies{
        {{"print", ConflictPolicy::print},
         {"resolve", ConflictPolicy::resolve},
         {"stop", ConflictPolicy::stop}}};
    const auto* const chosen =
        std::ranges::find_if(policies, [&value](const auto& each) { return isSameAscii(each.first, value); });
    if (chosen == policies.end()) {
        Remark("torka-conflicts takes print, resolve or stop, not " + value);
    } else {
        policy = chosen->second;
    }
}

void OptionSettings::TakeWatermark(const std::string& name) {
    if (isSameAscii(name, "none") || name.empty()) {
        return;
    }
    for (const bool isExact : {true, false}) {
        for (const std::string& definition : facts.watermarks) {
            auto candidate = std::make_unique<ZANWatermark>(definition.c_str());
            if (isExact ? candidate->Text() == name : isSameAscii(candidate->Text(), name)) {
                watermark = std::move(candidate);
                return;
            }
        }
    }
    if (isWatermarkDefinition(name)) {
        watermark = std::make_unique<ZANWatermark>(name.c_str());
    } else {
        Remark("the queue keeps no watermark " + name);
    }
}

void OptionSettings::TakeLayout(const OptionMap& options) {
    const auto option = [&options](std::string_view name) {
        const auto found = options.find(name);
        return found == options.end() ? std::string() : found->second;
    };
    const auto take = [this](const Result<void>& taken) {
        if (!taken) {
            Remark(taken.Why().text);
        }
    };
    if (const std::string pages = option("number-up"); !pages.empty()) {
        take(takePagesPerSheet(description, *settings, pages));
    }
    const PPDXPopupControl* duplex = description.GetControls()->FindPopup("*QVDuplex", true);
    if (const std::string sides = option("sides");
        !sides.empty() && duplex != nullptr && !given.contains(duplex)) {
        take(takeSides(description, sides));
    }
    if (truthOf(option("landscape")).value_or(false)) {
        orientation = kPMLandscape;
    }
    // The enumeration of RFC 8011, 5.2.10.
    constexpr std::array<std::pair<std::string_view, std::uint16_t>, 4> orientations{
        {{"3", kPMPortrait}, {"4", kPMLandscape}, {"5", kPMReverseLandscape}, {"6", kPMReversePortrait}}};
    const std::string asked = option("orientation-requested");
    const auto* const turned =
        std::ranges::find_if(orientations, [&asked](const auto& each) { return each.first == asked; });
    orientation = turned == orientations.end() ? orientation : turned->second;
}

void OptionSettings::TakeValue(PPDXControl& control, const std::string& value) {
    auto* note = dynamic_cast<PPDXJobNote*>(&control);
    if (note != nullptr && IsRefused(*note, value)) {
        return;
    }
    if (!decodeText(value, kCFStringEncodingUTF8)) {
        Remark(nameOf(control) + " has a value that is no UTF-8");
        return;
    }
    given.insert(&control);
    if (note != nullptr) {
        TakeNote(*note, value);
    } else if (auto* popup = dynamic_cast<PPDXPopupControl*>(&control)) {
        TakeChoice(*popup, value);
    } else if (auto* size = dynamic_cast<PPDXCustomPageSizeControl*>(&control)) {
        TakeSize(*size, value);
    } else if (control.Type() == CNTL_TYPE::specialOption) {
        Remark(checkSettingValue(control, value, value).Why().text);
    } else if (const Result<void> checked = checkSettingValue(control, value, value); !checked) {
        Remark(std::string(withoutAsterisk(checked.Why().text)));
    } else {
        control.SetCurrentControlWithCFString(cfString(controlText(control, value)));
        if (const std::string text = changedNumber(control, value, value); !text.empty()) {
            Remark(std::string(withoutAsterisk(text)));
        }
    }
}

void OptionSettings::TakeChoice(PPDXPopupControl& popup, const std::string& value) {
    std::string choice = spelling(popup, value);
    if (choice.empty() && popup == "*QVPrintSize" && sizeOf(value)) {
        if (auto* size = dynamic_cast<PPDXCustomPageSizeControl*>(Find("CustomPrintSize"))) {
            TakeSize(*size, value);
            return;
        }
    }
    const bool isCustomPage = popup == pageSizeKeyword && isSameAscii(value.substr(0, 7), "custom.");
    if (isCustomPage && facts.isLaidOut) {
        return; // the server prints it
    }
    if (choice.empty()) {
        choice = value;
        if (const Result<void> checked = checkSettingValue(popup, value, value); !checked) {
            Remark(std::string(withoutAsterisk(checked.Why().text)));
            return;
        }
    }
    popup.SetCurrentControlWithCFString(cfString(choice));
    // The five colour settings have a note beside the list.
    if (PPDXJobNote* note = description.GetControls()->FindJobNote(popup.Keyword(), true)) {
        note->SetCurrentControlWithCFString(cfString(choice));
    }
}

// Whatever the text is, even one that no note could hold.
bool OptionSettings::IsRefused(const PPDXJobNote& note, const std::string& text) {
    if (!takesSecrets && isSecretNote(description, &note)) {
        Remark(nameOf(note) + " is left out");
        return true;
    }
    const bool isProtected = leavesEncipheredOnly(description, &note);
    if (isProtected && !text.empty()) {
        protectedNotes.push_back(nameOf(note));
    }
    return isProtected;
}

void OptionSettings::TakeNote(PPDXJobNote& note, const std::string& text) {
    note.SetCurrentControlWithCFString(cfString(text));
    if (const std::string reason = lostTextReason(description, note, text); !reason.empty()) {
        Remark(nameOf(note) + " is left out: " + reason);
        return;
    }
    for (const std::string& broken : brokenRuleTexts(note)) {
        Remark(std::string(withoutAsterisk(broken)));
    }
}

void OptionSettings::TakeSize(PPDXCustomPageSizeControl& control, std::string_view value) {
    const std::optional<OptionSize> size = sizeFor(control, value);
    if (!size) {
        Remark(
            std::string(withoutAsterisk(checkSettingValue(control, value, std::string(value)).Why().text)));
        return;
    }
    control.SetWidth(static_cast<float>(size->width));
    control.SetHeight(static_cast<float>(size->height));
    if (auto* printSize = description.GetControls()->FindPopup("*QVPrintSize", true)) {
        printSize->SetCurrentControlWithCFString(cfString("CustomPrintSize"));
        given.insert(printSize);
    }
}

std::vector<std::string> OptionSettings::Resolve() {
    UIConstraints& constraints = *description.GetUIConstraints();
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    const auto controlOf = [&](std::int64_t key) -> PPDXControl* {
        const char* keyword = strings.Find(key);
        return keyword == nullptr ? nullptr : Find(keyword);
    };
    const auto mayChange = [&](std::int64_t key) {
        const PPDXControl* control = controlOf(key);
        return isChoiceControl(control) && !isServersSetting(*control) && !isInstallableOption(*control) &&
               !control->IsNoTorkaDriverUI() && !isBidiKeyword(control->Keyword());
    };
    const auto prefersFirst = [&](const KeyOption& first, const KeyOption& second) {
        return given.contains(controlOf(first.key)) || !given.contains(controlOf(second.key));
    };
    std::vector<std::string> texts;
    for (const KeyOption& change :
         findResolution(constraints, {mayChange, prefersFirst}).value_or(std::vector<KeyOption>())) {
        PPDXControl* control = controlOf(change.key);
        const char* option = strings.Find(change.option);
        if (control != nullptr && option != nullptr) {
            const std::string before = valueOf(*control);
            control->SetCurrentControlWithCFString(cfString(option));
            changed.insert(control);
            texts.push_back(nameOf(*control) + "=" + valueOf(*control) + " instead of " + before);
        }
    }
    return texts;
}

bool OptionSettings::IsPrintedByServer(std::string_view keyword) const {
    const PPDXControl* control = facts.isLaidOut ? Find(keyword) : nullptr;
    if (control == nullptr || changed.contains(control)) {
        return false;
    }
    const auto printed = serverChoices.find(withoutAsterisk(keyword));
    if (printed == serverChoices.end()) {
        return false;
    }
    return isServersSetting(*control) || printed->second.size() > 1 ||
           (printed->second.size() == 1 && printed->second.front() == valueOf(*control));
}

bool OptionSettings::IsLeftToServer(std::string_view keyword) const {
    if (!IsPrintedByServer(keyword)) {
        return false;
    }
    const PPDXControl* control = Find(keyword);
    const auto* popup = dynamic_cast<const PPDXPopupControl*>(control);
    return isServersSetting(*control) || (popup != nullptr && popup->CanSelectMultipleItems()) ||
           (*control == "*QVOrientation" && given.contains(control));
}

} // namespace torka
