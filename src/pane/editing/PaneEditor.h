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

// A setting as constraints see it: a keyword and one of its choices. The names come from the description.
struct PaneSetting {
    std::string keyword; // with its asterisk
    std::string choice;

    bool operator==(const PaneSetting&) const = default;
};

// Two settings chosen now of which the first does not allow the second.
struct PaneConflict {
    PaneSetting first;
    PaneSetting second;
};

// What would have to be chosen for all conflicts to go; `solved` is false when nothing was found.
struct PaneResolution {
    bool solved = false;
    std::vector<PaneSetting> changes; // in their new state
};

// A value beside its default, both in the form of PaneEditor::Value.
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
    std::vector<PPDXControl*> controls; // those whose values changed
    bool catalogRemade = false;         // fields known before are gone
};

// The one place through which a person's changes go: it sets values, knows which choices the present settings
// forbid and why, which of them are in conflict and how that is resolved, and it undoes.
//
// Refers to the description and to the pane's data (may be null), which must outlive it. Values are UTF-8 in
// the form of CopyCurrentControlValueString; of a popup of several choices their keywords, one a line. Values
// of masked and enciphered notes are kept nowhere, so their changes cannot be undone.
class PaneEditor {
public:
    PaneEditor(ZANPPD& ppd, PDEData* data);
    ~PaneEditor();
    PaneEditor(const PaneEditor&) = delete;
    PaneEditor& operator=(const PaneEditor&) = delete;

    ZANPPD& Model() const { return model; }
    const PaneCatalog& Catalog() const { return *catalog; }
    // Another number, never 0, once the catalogue was made anew or choices may have been replaced.
    std::uint64_t FieldsVersion() const { return fieldsVersion; }
    // Called after each change, in the order of the calls.
    void AddListener(std::function<void(const PaneChange&)> listener);

    // The description's control of that keyword, on a page or not; null when there is none.
    PPDXControl* FindControl(std::string_view keyword) const;
    static std::string Value(const PPDXControl& control);
    static std::string DefaultValue(const PPDXControl& control);
    PaneLock LockOf(const PPDXControl& control) const;

    // False, with nothing changed, for an unknown keyword, a locked field and a value that is there already.
    bool SetValue(std::string_view keyword, std::string_view value);
    bool SetValue(PPDXControl& control, std::string_view value);
    // Changes one control by `change`. `continues`: joins the step of the same control made just before, as
    // while typing. False when its value stayed.
    bool Edit(PPDXControl& control, const std::function<void()>& change, bool continues);
    // Changes any number of controls, and what stands beside them (SideSettings), as one step.
    bool EditAll(const std::function<void()>& change);
    bool Reset(PPDXControl& control);
    // The controls of these keywords as one step; locked ones stay. False when no value changed.
    bool Reset(const std::vector<std::string>& keywords);
    // The next edit begins a step of its own.
    void EndStep() { stepIsOpen = false; }
    // Takes up what changed without the editor: values, choices, controls.
    void Refresh();

    bool CanUndo() const { return !done.empty(); }
    bool CanRedo() const { return !undone.empty(); }
    bool Undo();
    bool Redo();
    // The controls that the next Undo would change; none when there is nothing to undo.
    std::vector<PPDXControl*> UndoSubjects() const;

    // Whether each choice of a control, in the order of choicesOf, is forbidden by what is chosen now.
    std::vector<bool> Forbidden(const PPDXControl& control) const;
    // The same for many controls, for one painting.
    std::vector<std::vector<bool>> Sweep(const std::vector<PPDXControl*>& controls) const;
    // What forbids the choice now; empty when it is allowed.
    std::vector<PaneSetting> ForbiddenBy(std::string_view keyword, std::string_view choice) const;
    // All conflicts present now, each pair once.
    const std::vector<PaneConflict>& Conflicts() const;
    // What Resolve() would do. Keeps what was edited last where it can; never changes installable options or
    // what a person cannot change.
    const PaneResolution& Resolution() const;
    // As one step. False when there is no conflict or no solution.
    bool Resolve();

    // The fields whose values differ from the defaults, in order; not the installable options and what the
    // system chooses.
    std::vector<PaneDifference> Differences() const;
    std::size_t DifferenceCount() const { return Differences().size(); }

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
    // Values as they are kept for comparing: of a secret note a hash.
    static std::string Remembered(const PPDXControl& control);
    Step TakeChanges(const std::vector<PPDXControl*>& among);
    // Whether the catalogue had to be made anew.
    bool TakeUpNewControls();
    void Record(Step step, bool continues, PaneChange::Kind kind, bool remade = false);
    bool Replay(std::vector<Step>& from, std::vector<Step>& to, PaneChange::Kind kind);
    void Tell(const PaneChange& change);
    void MakeCatalog();
    bool CanBeResolved(std::string_view keyword) const;
    PaneSetting SettingOf(const KeyOption& pair) const;
    std::vector<std::pair<KeyOption, KeyOption>> ConflictPairs(const KVCache& selections) const;
    PaneResolution FindResolution() const;
    KVCache LockedPairs(const KVCache& selections) const;
    bool PrefersFirst(const KeyOption& first, const KeyOption& second, const KVCache& locked) const;
    void LeaveOutNeedless(KVCache& changes) const;

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

// Whether a note's text must be shown and kept nowhere. False for other controls.
bool isSecret(const PPDXControl& control);

} // namespace torka
