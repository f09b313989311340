// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"
#include "pane/data/SideSettings.h"
#include "pane/editing/PaneCatalog.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace torka {

class PDEData;
class UIConstraints;

// A setting as the constraints name it: a keyword and one of its choices.
struct PaneSetting {
    std::string keyword; // with its asterisk
    std::string choice;

    bool operator==(const PaneSetting&) const = default;
};

// Two present settings; the first does not allow the second.
struct PaneConflict {
    PaneSetting first;
    PaneSetting second;
};

// The changes that would end all conflicts. `solved` is false when none were found.
struct PaneResolution {
    bool solved = false;
    std::vector<PaneSetting> changes; // the new choices
};

// A value and its default, both in the form of PaneEditor::Value.
struct PaneDifference {
    const PaneField* field = nullptr;
    std::string value;
    std::string defaultValue;
};

// Why a person cannot change a field.
enum class PaneLock {
    none,
    administrator, // the management template locks it
    system         // the print dialog's own pages choose it
};

struct PaneChange {
    enum class Kind { edit, resolution, undo, redo, outside };
    Kind kind = Kind::edit;
    std::vector<PPDXControl*> controls; // with changed values
    bool catalogRemade = false;         // all fields known before are invalid
};

// Whether a change leaves the choice of a preset of the server (serverPresetKeywords) as it is.
enum class ServerPresetChoice { forget, keep };

// Every change of a person goes through the editor. It sets values, tells which choices the present settings
// forbid and why, finds and resolves conflicts, and undoes.
//
// Refers to the description and to the pane's data (may be null), which must outlive it. Values are UTF-8 in
// the form of CopyCurrentControlValueString; the value of a popup with several choices is their keywords, one
// a line. A change empties the notes that name a preset of the server, which undoing it brings back. Values
// of masked and enciphered notes are not kept, so that their changes cannot be undone.
class PaneEditor {
public:
    PaneEditor(ZANPPD& ppd, PDEData* data);
    ~PaneEditor();
    PaneEditor(const PaneEditor&) = delete;
    PaneEditor& operator=(const PaneEditor&) = delete;

    ZANPPD& Model() const { return model; }
    const PaneCatalog& Catalog() const { return *catalog; }
    // Changes when the catalogue was made again or choices may have been replaced. Never 0.
    std::uint64_t FieldsVersion() const { return fieldsVersion; }
    // Listeners are called after each change, in the order in which they were added.
    void AddListener(std::function<void(const PaneChange&)> listener);

    // The control of that keyword, whether a page shows it or not; null when there is none.
    PPDXControl* FindControl(std::string_view keyword) const;
    static std::string Value(const PPDXControl& control);
    static std::string DefaultValue(const PPDXControl& control);
    PaneLock LockOf(const PPDXControl& control) const;

    // Returns false and changes nothing for an unknown keyword, a locked field, or the present value.
    bool SetValue(PPDXControl& control, std::string_view value);
    // Changes one control by `change`. `continues`: joins the step made just before when it changed the same
    // control, as typing does. Returns false when the value is unchanged.
    bool Edit(PPDXControl& control, const std::function<void()>& change, bool continues);
    // Changes any number of controls and the settings outside controls (SideSettings) as one step.
    bool EditAll(const std::function<void()>& change, ServerPresetChoice preset = ServerPresetChoice::forget);
    bool Reset(PPDXControl& control);
    // Resets the controls of these keywords as one step. Locked controls are left. Returns false when no
    // value changed.
    bool Reset(const std::vector<std::string>& keywords);
    // Makes the next edit a step of its own.
    void EndStep() { stepIsOpen = false; }
    // Takes up changes made elsewhere: values, choices, controls.
    void Refresh();

    bool CanUndo() const { return !done.empty(); }
    bool CanRedo() const { return !undone.empty(); }
    bool Undo();
    bool Redo();
    // The controls that the next Undo would change; none when there is nothing to undo.
    std::vector<PPDXControl*> UndoSubjects() const;

    // Whether the present settings forbid each choice of a control, in the order of choicesOf.
    std::vector<bool> Forbidden(const PPDXControl& control) const;
    // The settings that forbid the choice now; empty when it is allowed.
    std::vector<PaneSetting> ForbiddenBy(std::string_view keyword, std::string_view choice) const;
    // All present conflicts, each pair once.
    const std::vector<PaneConflict>& Conflicts() const;
    // The changes that Resolve() would make. It keeps the setting edited last where it can. It never changes
    // installable options or locked controls.
    const PaneResolution& Resolution() const;
    // Resolves all conflicts as one step. Returns false without a conflict and without a solution.
    bool Resolve();
    // The choice, and the changes that end the conflicts which it causes. Unsolved for a choice that the
    // present settings allow, for a popup with several choices, and for a locked control. It leaves other
    // conflicts as they are, and never changes what Resolution() does not change, the control itself
    // excepted.
    PaneResolution WayTo(const PPDXControl& control, std::string_view choice) const;
    // Makes these changes as one step. Returns false when there are none.
    bool ChangeWithOthers(const PPDXControl& control, std::string_view choice);

    // The fields whose values differ from the defaults, in order. Installable options and settings of the
    // system are left out.
    std::vector<PaneDifference> Differences() const;
    std::size_t DifferenceCount() const { return Differences().size(); }

    // For the tests; no caller here
    bool SetValue(std::string_view keyword, std::string_view value);

private:
    struct ValueChange {
        PPDXControl* control;
        std::string before;
        std::string after;
    };
    struct Step {
        std::vector<ValueChange> values;
        std::optional<std::pair<SideSettings, SideSettings>> side; // before and after, when they differ

        bool IsEmpty() const { return values.empty() && !side; }
    };

    static void Apply(PPDXControl& control, const std::string& value);
    std::string& Seen(PPDXControl& control) { return seen[&control]; }
    // The value to compare with later; for a secret note its hash.
    static std::string Remembered(const PPDXControl& control);
    Step TakeChanges(const std::vector<PPDXControl*>& among);
    // The settings no longer match the preset: empties its notes, and adds this to a step that is not empty.
    void ForgetServerPreset(Step& step);
    // Returns whether the catalogue was made again.
    bool TakeUpNewControls();
    void Record(Step step, bool continues, PaneChange::Kind kind, bool remade = false);
    bool Replay(std::vector<Step>& from, std::vector<Step>& to, PaneChange::Kind kind);
    void Tell(const PaneChange& change);
    void MakeCatalog();
    bool CanBeResolved(std::string_view keyword) const;
    PaneSetting SettingOf(const KeyOption& pair) const;
    // `wanted`: a change to make, whose new conflicts alone are resolved; null resolves all.
    PaneResolution FindResolution(const KeyOption* wanted) const;
    bool Make(const PaneResolution& found);
    bool PrefersFirst(const KeyOption& first, const KeyOption& second, std::string_view edited) const;

    ZANPPD& model;
    PDEData* paneData;
    UIConstraints& constraints;
    std::unique_ptr<PaneCatalog> catalog;
    std::uint64_t fieldsVersion = 0;
    std::vector<PPDXControl*> controls; // all of the description, special options left out
    std::unordered_map<const PPDXControl*, std::string> seen;
    std::vector<std::function<void(const PaneChange&)>> listeners;
    std::vector<Step> done;
    std::vector<Step> undone;
    bool stepIsOpen = false;
    bool isEditing = false; // within EditAll
    std::string lastEdited; // keyword

    mutable std::optional<std::vector<PaneConflict>> conflicts; // of the present values
    mutable std::optional<PaneResolution> resolution;
};

// Whether a note's text must not be shown or kept. False for other controls.
bool isSecret(const PPDXControl& control);

} // namespace torka
