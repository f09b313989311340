// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/PresetChoice.h"

#include "PPDX/PPDObjects/Controls/PPDXCustomPageSizeControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "jobsettings/StandingSettings.h"
#include "output/WatermarkFields.h"
#include "output/ZANJobNote.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/PDEData.h"
#include "pane/data/SideSettings.h"
#include "pane/editing/PaneEditor.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::string_view printSizeKeyword = "*QVPrintSize";

// The custom size as an option of jobs names it (docs/options.md); "" when the job has no such size.
std::string customSizeOption(const PaneEditor& editor) {
    const PPDXControl* printSize = editor.FindControl(printSizeKeyword);
    std::string value;
    if (printSize != nullptr && PaneEditor::Value(*printSize) == "CustomPrintSize") {
        editor.Model().GetControls()->ForEach([&value](const PPDXControl* control) {
            if (const auto* size = dynamic_cast<const PPDXCustomPageSizeControl*>(control)) {
                value = "Custom." + floatText(size->GetWidth()) + "x" + floatText(size->GetHeight()) + "pt";
            }
        });
    }
    return value;
}

} // namespace

PresetChoice::PresetChoice(const PaneTexts& paneTexts, PaneEditor& paneEditor, PDEData& paneData)
    : texts(paneTexts)
    , editor(paneEditor)
    , data(paneData)
    , store(data.PrinterName(), editor.Model(), data) {}

void PresetChoice::Choose(const std::string& name) {
    chosen = name;
    settingsOfChosen = chosen.empty() ? nullptr : store.PresentSettings();
    isChanged = false;
}

void PresetChoice::ChooseByPresentSettings() {
    if (chosen.empty() && !store.Names().empty()) { // most people have none, and are spared the comparison
        Choose(store.NameOf(store.PresentSettings()));
    }
}

void PresetChoice::Compare() {
    isChanged = !chosen.empty() && !CFEqual(settingsOfChosen, store.PresentSettings());
}

std::string PresetChoice::Apply(const std::string& name) {
    PresetStore::Result result = PresetStore::Result::done;
    editor.EditAll([&] { result = store.Apply(name); });
    if (result != PresetStore::Result::done) {
        return Problem(result, name);
    }
    Choose(name);
    if (store.LeftOut().IsEmpty()) {
        return {};
    }
    settingsOfChosen = store.SettingsOf(name);
    Compare();
    return texts.Say(words::presetLeftOut, name, LeftOutNames());
}

std::string PresetChoice::LeftOutNames() const {
    std::vector<std::string> names;
    for (const PPDXControl* control : store.LeftOut().controls) {
        names.push_back(nameOf(*control));
    }
    names.insert(names.end(), store.LeftOut().keywords.begin(), store.LeftOut().keywords.end());
    if (store.LeftOut().watermark) {
        names.push_back(texts.Say(words::watermark));
    }
    return joined(names);
}

std::string PresetChoice::Save(const std::string& name) {
    const PresetStore::Result result = store.Save(name);
    if (result == PresetStore::Result::done) {
        Choose(name);
    }
    return Problem(result, name);
}

std::string PresetChoice::Rename(const std::string& name) {
    const PresetStore::Result result = store.Rename(chosen, name);
    std::string problem = Problem(result, chosen);
    if (result == PresetStore::Result::done) {
        chosen = name;
    }
    return problem;
}

std::string PresetChoice::Remove() {
    const PresetStore::Result result = store.Remove(chosen);
    std::string problem = Problem(result, chosen);
    if (result == PresetStore::Result::done) {
        Choose({});
    }
    return problem;
}

std::string PresetChoice::Problem(PresetStore::Result result, const std::string& name) {
    switch (result) {
    case PresetStore::Result::done:
        break;
    case PresetStore::Result::badName:
        return texts.Say(words::presetBadName);
    case PresetStore::Result::nameTaken:
        return texts.Say(words::presetTaken);
    case PresetStore::Result::full:
        return texts.Say(words::presetFull);
    case PresetStore::Result::notRead:
        return texts.Say(words::presetNotRead, store.File().string());
    case PresetStore::Result::notWritten:
        return texts.Say(words::presetNotWritten, store.File().string());
    case PresetStore::Result::notFound: { // another dialog has removed it
        std::string problem = texts.Say(words::presetGone, name);
        if (name == chosen) {
            Choose({});
        }
        return problem;
    }
    }
    return {};
}

bool PresetChoice::CanServeAllPrograms() { return platform::hasSpooler(); }

PresetChoice::Kept PresetChoice::KeptForAllPrograms() const {
    const Result<platform::StandingOptionList> kept =
        standingSettings(platform::spooler(), utf8Text(data.PrinterName()), editor.Model());
    return {kept && !kept->empty(),
            kept ? std::string() : texts.Say(words::allProgramsNotRead, texts.Message(kept.Why().Line()))};
}

PresetChoice::Served PresetChoice::ServeAllPrograms() {
    platform::StandingOptionList settings;
    std::vector<std::string> others; // settings that no option can hold
    const std::string customSize = customSizeOption(editor);
    if (!customSize.empty()) {
        settings.emplace_back(printSizeKeyword.substr(1), customSize);
    }
    for (const PaneDifference& difference : editor.Differences()) {
        const PPDXControl& control = *difference.field->control;
        const bool isChoice = control.Type() == CNTL_TYPE::popup;
        if (isChoice && (difference.value.empty() || difference.value.find('\n') != std::string::npos)) {
            others.push_back(nameOf(control)); // an option names one choice
        } else if (!isSecretNote(editor.Model(), &control) &&
                   (customSize.empty() || difference.field->keyword != printSizeKeyword)) {
            settings.emplace_back(difference.field->keyword.substr(1), difference.value);
        }
    }
    if (const ZANWatermark* watermark = data.Watermarks().Selected()) {
        settings.emplace_back("torka-watermark", WatermarkFields::Of(*watermark).Definition());
    }
    const SideSettings side = SideSettings::Of(data);
    if (std::ranges::any_of(side.lists, [](const auto& list) { return !list.empty(); })) {
        others.push_back(texts.Say(words::allProgramsLists));
    }
    return {Replace(settings),
            others.empty() ? std::string() : texts.Say(words::allProgramsLeftOut, joined(others))};
}

std::string PresetChoice::ServeOnlyThisPane() { return Replace({}); }

std::string PresetChoice::Replace(const platform::StandingOptionList& settings) {
    const std::string reason =
        replaceStandingSettings(platform::spooler(), utf8Text(data.PrinterName()), editor.Model(), settings);
    return reason.empty() ? reason : texts.Say(words::allProgramsNotKept, texts.Message(reason));
}

std::string PresetChoice::Shown(std::string_view name) const {
    if (chosen.empty()) {
        return texts.Say(words::presets);
    }
    return isChanged ? texts.Say(words::presetChanged, name) : std::string(name);
}

std::string PresetChoice::Tip() const { return chosen.empty() ? texts.Say(words::presetTip) : Shown(chosen); }

PresetNameState presetNameState(const PaneTexts& texts, const std::string& renamed,
                                const std::vector<std::string>& taken, const std::string& typed,
                                const std::string& name) {
    const bool saves = renamed.empty();
    const bool isNew = std::ranges::find(taken, name) == taken.end();
    const bool collides = !isNew && name != renamed;
    const bool isGood = !name.empty() && std::ranges::none_of(typed, [](char c) {
        return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
    });
    PresetNameState state;
    state.button = !saves  ? &words::presetRenameButton
                   : isNew ? &words::presetSaveButton
                           : &words::presetReplaceButton;
    state.canAccept = isGood && (saves || (isNew && name != renamed));
    if (!isGood && !typed.empty()) {
        state.hint = texts.Say(words::presetBadName);
    } else if (collides) {
        state.hint = texts.Say(saves ? words::presetReplaces : words::presetTaken);
    } else if (saves) {
        state.hint = texts.Say(words::presetNotKept);
    }
    return state;
}

} // namespace torka
