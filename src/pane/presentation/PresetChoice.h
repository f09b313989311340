// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/data/PresetStore.h"
#include "pane/presentation/PaneTexts.h"
#include "platform/Spooler.h"

#include <string>
#include <string_view>
#include <vector>

namespace torka {

// The presets of a printer: which one is chosen, and whether the settings still match it.
//
// The functions that change presets return "" on success, else a sentence that tells why not. Refers to the
// editor and the data of the pane, which must outlive it.
class PresetChoice {
public:
    PresetChoice(const PaneTexts& texts, PaneEditor& editor, PDEData& data);

    std::vector<std::string> Names() const { return store.Names(); }
    const std::string& Chosen() const { return chosen; } // "" for none
    bool IsChanged() const { return isChanged; }
    // When no preset is chosen, chooses the one that equals the present settings.
    void ChooseByPresentSettings();
    // Compares the settings with the chosen preset; IsChanged tells the result.
    void Compare();

    // Apply is one step that can be undone. Its sentence may also name settings that the printer no longer
    // takes; the others are applied then, and the preset counts as changed.
    std::string Apply(const std::string& name);
    std::string Save(const std::string& name);
    std::string Update() { return chosen.empty() ? std::string() : Save(chosen); }
    std::string Rename(const std::string& name); // the chosen one
    std::string Remove();                        // the chosen one

    // Whether all programs can print with settings that this person keeps, and whether there are any.
    static bool CanServeAllPrograms();
    struct Kept {
        bool isAny = false;
        std::string problem; // "" unless they cannot be read
    };
    Kept KeptForAllPrograms() const;
    // Keeps the settings that differ from their defaults, and the watermark, for the jobs of all programs, in
    // place of what is kept. Leaves out secret notes and what programs choose; and lists with other than one
    // choice and settings without a field, which it names.
    struct Served {
        std::string problem; // "" on success
        std::string note;    // what was left out; "" for nothing
    };
    Served ServeAllPrograms();
    std::string ServeOnlyThisPane();

    // The text of the button: the name of the chosen preset as given, perhaps cut, with "(changed)" when the
    // settings differ; "Presets" when none is chosen.
    std::string Shown(std::string_view name) const;
    std::string Tip() const;

private:
    void Choose(const std::string& name);
    std::string Problem(PresetStore::Result result, const std::string& name);
    std::string LeftOutNames() const;
    std::string Replace(const platform::StandingOptionList& settings);

    const PaneTexts& texts;
    PaneEditor& editor;
    PDEData& data;
    PresetStore store;
    std::string chosen;
    CFDictionaryRef settingsOfChosen; // after the last Apply or Save
    bool isChanged = false;
};

// The state of the dialog that asks for the name of a preset.
struct PresetNameState {
    const PaneWord* button; // the text of the button that accepts
    bool canAccept = false;
    std::string hint;
};
// `renamed`: the present name of the preset to rename, or "" for saving one. `typed`: the text of the field.
// `name`: the same without white space around it.
PresetNameState presetNameState(const PaneTexts& texts, const std::string& renamed,
                                const std::vector<std::string>& taken, const std::string& typed,
                                const std::string& name);

} // namespace torka
