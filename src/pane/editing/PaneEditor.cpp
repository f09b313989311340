// SPDX-License-Identifier: Apache-2.0
#include "pane/editing/PaneEditor.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Controls/PPDXFloatRangeControl.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/ZANJobNote.h"
#include "pane/data/ControlTables.h"
#include "pane/data/ControlValueText.h"
#include "pane/data/PDEData.h"
#include "pane/data/SpecialControls.h"

#include <algorithm>
#include <iterator>

namespace torka {
namespace {

constexpr std::size_t maximumSteps = 200; // that can be undone

// Null for other controls. Asks for the type, because a cast that fails takes longer than the rest of a
// comparison.
const PPDXPopupControl* popupOf(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::popup ? static_cast<const PPDXPopupControl*>(&control) : nullptr;
}

bool choosesSeveral(const PPDXControl& control) {
    const PPDXPopupControl* popup = popupOf(control);
    return popup != nullptr && popup->CanSelectMultipleItems();
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char unit) { return static_cast<unsigned char>(unit) < 0x80; });
}

// The keyword of a popup's one choice without the way through a CFString, which takes most of the time of
// comparing hundreds of fields. None for other controls, and for what that way would change: text that is
// not ASCII.
std::optional<std::string_view> chosenKeyword(const PPDXControl& control) {
    const PPDXPopupControl* popup = popupOf(control);
    if (popup == nullptr || popup->CanSelectMultipleItems()) {
        return std::nullopt;
    }
    std::string_view keyword;
    bool isFound = false;
    popup->ForEachItem([&](const _PopupItem& item) {
        if (item.selected != 0 && !isFound) {
            keyword = item.keyword.View();
            isFound = true;
        }
    });
    return isAscii(keyword) ? std::optional(keyword) : std::nullopt;
}

// Whether a popup has its default choice, asked without making either text. False also where only the texts
// can tell.
bool isAtDefaultItem(const PPDXControl& control) {
    const PPDXPopupControl* popup = popupOf(control);
    if (popup == nullptr || popup->CanSelectMultipleItems()) {
        return false;
    }
    const int chosen = popup->GetValue();
    return chosen != 0 && chosen == popup->DefaultValue() && isAscii(popup->DefaultText());
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

} // namespace

bool isSecret(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::jobNote && isMaskedNote(&control);
}

PaneEditor::PaneEditor(ZANPPD& ppd, PDEData* data)
    : model(ppd)
    , paneData(data)
    , constraints(*ppd.GetUIConstraints()) {
    MakeCatalog();
    seen.reserve(controls.size());
    for (PPDXControl* control : controls) {
        Seen(*control) = Remembered(*control);
    }
}

PaneEditor::~PaneEditor() = default;

void PaneEditor::AddListener(std::function<void(const PaneChange&)> listener) {
    listeners.push_back(std::move(listener));
}

void PaneEditor::MakeCatalog() {
    ++fieldsVersion;
    controls.clear();
    model.GetControls()->ForEach([this](PPDXControl* control) {
        if (control->Type() != CNTL_TYPE::specialOption && control->Keyword() != nullptr) {
            controls.push_back(control);
        }
    });
    catalog = std::make_unique<PaneCatalog>(model, [this](std::string_view keyword) {
        return paneData != nullptr && paneData->dmtHides(keyword);
    });
}

PPDXControl* PaneEditor::FindControl(std::string_view keyword) const {
    CNTL_TYPE type{};
    return model.GetControls()->Find(std::string(keyword).c_str(), type, true);
}

std::string PaneEditor::Value(const PPDXControl& control) {
    if (const std::optional<std::string_view> keyword = chosenKeyword(control)) {
        return std::string(*keyword);
    }
    if (choosesSeveral(control)) {
        std::string chosen;
        static_cast<const PPDXPopupControl&>(control).ForEachItem([&](const _PopupItem& item) {
            if (item.selected != 0 && item.keyword.Buffer() != nullptr) {
                chosen += (chosen.empty() ? "" : "\n") + std::string(item.keyword.Buffer());
            }
        });
        return chosen;
    }
    // The usual text of a decimal number has three decimals, so that an undo would round it.
    if (control.Type() == CNTL_TYPE::floatRange) {
        return floatText(static_cast<const PPDXFloatRangeControl&>(control).GetValue());
    }
    return utf8Text(control.CopyCurrentControlValueString());
}

std::string PaneEditor::DefaultValue(const PPDXControl& control) {
    return control.Type() == CNTL_TYPE::floatRange
               ? floatText(static_cast<const PPDXFloatRangeControl&>(control).DefaultValue())
               : control.DefaultText();
}

PaneLock PaneEditor::LockOf(const PPDXControl& control) const {
    if (isChosenBySystem(control)) {
        return PaneLock::system;
    }
    const bool locked =
        paneData != nullptr && control.Keyword() != nullptr && paneData->dmtLocks(control.Keyword());
    return locked ? PaneLock::administrator : PaneLock::none;
}

void PaneEditor::Apply(PPDXControl& control, const std::string& value) {
    auto* popup = dynamic_cast<PPDXPopupControl*>(&control);
    if (popup != nullptr && popup->CanSelectMultipleItems()) {
        const std::vector<std::string> chosen = linesOf(value);
        for (const std::string& keyword : linesOf(Value(control))) {
            if (std::ranges::find(chosen, keyword) == chosen.end()) {
                popup->SetKeywordSelect(keyword.c_str(), false);
            }
        }
        for (const std::string& keyword : chosen) {
            popup->SetKeywordSelect(keyword.c_str(), true);
        }
    } else if (popup != nullptr && value.empty()) {
        popup->SetValue(0);
    } else {
        control.SetCurrentControlWithCFString(cfString(value));
    }
}

std::string PaneEditor::Remembered(const PPDXControl& control) {
    std::string value = Value(control);
    return isSecret(control) ? std::to_string(std::hash<std::string>{}(value)) : value;
}

bool PaneEditor::SetValue(std::string_view keyword, std::string_view value) {
    PPDXControl* control = FindControl(keyword);
    return control != nullptr && SetValue(*control, value);
}

bool PaneEditor::SetValue(PPDXControl& control, std::string_view value) {
    return LockOf(control) == PaneLock::none &&
           Edit(
               control, [&] { Apply(control, std::string(value)); }, false);
}

bool PaneEditor::Edit(PPDXControl& control, const std::function<void()>& change, bool continues) {
    change();
    Step step = TakeChanges({&control});
    if (step.IsEmpty()) {
        return false;
    }
    ForgetServerPreset(step);
    lastEdited = control.Keyword();
    Record(std::move(step), continues, PaneChange::Kind::edit);
    stepIsOpen = continues;
    return true;
}

bool PaneEditor::EditAll(const std::function<void()>& change, ServerPresetChoice preset) {
    std::optional<SideSettings> before;
    if (paneData != nullptr) {
        before = SideSettings::Of(*paneData);
    }
    isEditing = true; // drawings within `change` are taken up at its end
    change();
    isEditing = false;
    const bool remade = TakeUpNewControls();
    Step step = TakeChanges(controls);
    if (before) {
        SideSettings after = SideSettings::Of(*paneData);
        if (after != *before) {
            step.side.emplace(std::move(*before), std::move(after));
        }
    }
    if (step.IsEmpty() && !remade) {
        return false;
    }
    if (preset == ServerPresetChoice::forget) {
        ForgetServerPreset(step);
    }
    lastEdited.clear();
    Record(std::move(step), false, PaneChange::Kind::edit, remade);
    return true;
}

bool PaneEditor::Reset(PPDXControl& control) {
    return LockOf(control) == PaneLock::none && Edit(
                                                    control, [&] { control.ResetToDefaultValue(); }, false);
}

bool PaneEditor::Reset(const std::vector<std::string>& keywords) {
    return EditAll([&] {
        for (const std::string& keyword : keywords) {
            PPDXControl* control = FindControl(keyword);
            if (control != nullptr && LockOf(*control) == PaneLock::none) {
                control->ResetToDefaultValue();
            }
        }
    });
}

PaneEditor::Step PaneEditor::TakeChanges(const std::vector<PPDXControl*>& among) {
    Step step;
    for (PPDXControl* control : among) {
        std::string& before = Seen(*control);
        if (chosenKeyword(*control) == before) {
            continue; // the common case, without a new text
        }
        std::string now = Remembered(*control);
        if (now != before) {
            step.values.push_back({control, std::move(before), now});
            before = std::move(now);
        }
    }
    return step;
}

void PaneEditor::ForgetServerPreset(Step& step) {
    if (step.IsEmpty()) {
        return;
    }
    std::vector<PPDXControl*> notes;
    for (const char* keyword : serverPresetKeywords) {
        if (PPDXJobNote* note = model.GetControls()->FindJobNote(keyword, true)) {
            note->SetUTF8Notes(cfString(""));
            notes.push_back(note);
        }
    }
    Step forgotten = TakeChanges(notes);
    step.values.insert(step.values.end(), std::make_move_iterator(forgotten.values.begin()),
                       std::make_move_iterator(forgotten.values.end()));
}

void PaneEditor::Record(Step step, bool continues, PaneChange::Kind kind, bool remade) {
    PaneChange change{kind, {}, remade};
    for (const ValueChange& value : step.values) {
        change.controls.push_back(value.control);
    }
    std::erase_if(step.values, [](const ValueChange& value) { return isSecret(*value.control); });
    if (!step.IsEmpty()) {
        undone.clear();
        if (continues && stepIsOpen && step.values.size() == 1 && !done.empty() &&
            !done.back().values.empty() && !done.back().side &&
            done.back().values.front().control == step.values.front().control) {
            done.back().values.front().after = std::move(step.values.front().after);
        } else {
            done.push_back(std::move(step));
            if (done.size() > maximumSteps) {
                done.erase(done.begin());
            }
        }
    }
    stepIsOpen = false;
    Tell(change);
}

void PaneEditor::Tell(const PaneChange& change) {
    conflicts.reset();
    resolution.reset();
    for (std::size_t i = 0; i < listeners.size(); ++i) { // a listener may add another
        listeners[i](change);
    }
}

bool PaneEditor::TakeUpNewControls() {
    std::size_t count = 0;
    model.GetControls()->ForEach([&](PPDXControl* control) {
        if (control->Type() != CNTL_TYPE::specialOption && control->Keyword() != nullptr) {
            ++count;
        }
    });
    if (count == controls.size()) {
        ++fieldsVersion;
        return false;
    }
    MakeCatalog();
    for (PPDXControl* control : controls) {
        if (const auto [place, isNew] = seen.try_emplace(control); isNew) {
            place->second = Remembered(*control);
        }
    }
    return true;
}

void PaneEditor::Refresh() {
    if (isEditing) {
        return;
    }
    PaneChange change{PaneChange::Kind::outside, {}, TakeUpNewControls()};
    for (const ValueChange& value : TakeChanges(controls).values) {
        change.controls.push_back(value.control);
    }
    const auto isStale = [&](const Step& step) {
        return std::ranges::any_of(step.values, [&](const ValueChange& value) {
            return std::ranges::find(change.controls, value.control) != change.controls.end();
        });
    };
    if (std::ranges::any_of(done, isStale) || std::ranges::any_of(undone, isStale)) {
        done.clear();
        undone.clear();
    }
    stepIsOpen = false;
    Tell(change);
}

bool PaneEditor::Undo() { return Replay(done, undone, PaneChange::Kind::undo); }

bool PaneEditor::Redo() { return Replay(undone, done, PaneChange::Kind::redo); }

bool PaneEditor::Replay(std::vector<Step>& from, std::vector<Step>& to, PaneChange::Kind kind) {
    if (from.empty()) {
        return false;
    }
    Step step = std::move(from.back());
    from.pop_back();
    PaneChange change{kind, {}, false};
    if (step.side) {
        (kind == PaneChange::Kind::undo ? step.side->first : step.side->second).PutInto(*paneData);
    }
    for (const ValueChange& value : step.values) {
        Apply(*value.control, kind == PaneChange::Kind::undo ? value.before : value.after);
        Seen(*value.control) = Remembered(*value.control);
        change.controls.push_back(value.control);
    }
    to.push_back(std::move(step));
    stepIsOpen = false;
    lastEdited.clear();
    Tell(change);
    return true;
}

std::vector<PPDXControl*> PaneEditor::UndoSubjects() const {
    std::vector<PPDXControl*> subjects;
    if (!done.empty()) {
        for (const ValueChange& value : done.back().values) {
            subjects.push_back(value.control);
        }
    }
    return subjects;
}

std::vector<PaneDifference> PaneEditor::Differences() const {
    std::vector<PaneDifference> differences;
    catalog->ForEach([&](const PaneField& field) {
        if (isAtDefaultItem(*field.control) || catalog->Pages()[field.page].installable ||
            isChosenBySystem(*field.control) || field.control->Type() == CNTL_TYPE::customPageSize) {
            return;
        }
        std::string value = Value(*field.control);
        std::string defaultValue = DefaultValue(*field.control);
        if (value != defaultValue) {
            differences.push_back({&field, std::move(value), std::move(defaultValue)});
        }
    });
    return differences;
}

} // namespace torka
