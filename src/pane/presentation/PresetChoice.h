#pragma once

#include "pane/data/PresetStore.h"
#include "pane/presentation/PaneTexts.h"

#include <string>
#include <string_view>
#include <vector>

namespace torka {

// The presets of a printer as a person works with them: which one is chosen, and whether the settings have
// left it.
//
// What changes the presets answers with why it was not done, a sentence, or "". Refers to the editor and the
// pane's data, which must outlive it.
class PresetChoice {
public:
    PresetChoice(const PaneTexts& texts, PaneEditor& editor, PDEData& data);

    std::vector<std::string> Names() const { return store.Names(); }
    const std::string& Chosen() const { return chosen; } // "" for none
    bool IsChanged() const { return isChanged; }
    // Chooses the preset that the present settings are, when none is chosen yet.
    void ChooseByPresentSettings();
    // Finds out whether the settings have left the chosen preset.
    void Compare();

    // One step that can be undone.
    std::string Apply(const std::string& name);
    std::string Save(const std::string& name);
    std::string Update() { return chosen.empty() ? std::string() : Save(chosen); }
    std::string Rename(const std::string& name); // the chosen one
    std::string Remove();                        // the chosen one

    // A name of the chosen preset, perhaps cut, with "(changed)" when it is; "Presets" while none is chosen.
    std::string Shown(std::string_view name) const;
    std::string Tip() const;

private:
    void Choose(const std::string& name);
    std::string Problem(PresetStore::Result result, const std::string& name);

    const PaneTexts& texts;
    PaneEditor& editor;
    PresetStore store;
    std::string chosen;
    CFDictionaryRef settingsOfChosen; // as they were after applying or saving
    bool isChanged = false;
};

// What the dialog that asks for a name says about what is typed there.
struct PresetNameState {
    const PaneWord* button; // what the button that accepts is called
    bool canAccept = false;
    std::string hint;
};
// `renamed`: the present name of a preset that gets another, or "" for saving one. `name`: what was typed,
// without the white space around it.
PresetNameState presetNameState(const PaneTexts& texts, const std::string& renamed,
                                const std::vector<std::string>& taken, const std::string& typed,
                                const std::string& name);

} // namespace torka
