// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/ConflictResolution.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/ControlTables.h"
#include "pane/data/PDEData.h"
#include "pane/editing/PaneEditor.h"

#include <algorithm>

// Forbidden choices, conflicts and their resolution.

namespace torka {
namespace {

const char* textOf(const char* text) { return text == nullptr ? "" : text; }

} // namespace

std::vector<bool> PaneEditor::Forbidden(const PPDXControl& control) const {
    std::vector<bool> forbidden;
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    const char* keyword = textOf(control.Keyword());
    const std::int64_t key = strings.Find(std::string_view(keyword));
    const auto ask = [&](std::string_view choice) {
        const std::int64_t option = strings.Find(choice);
        // A choice that the description does not declare is in no constraint.
        forbidden.push_back(option >= 0 && constraints.IsKVConstrained(key, option));
    };
    if (const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control)) {
        forbidden.reserve(popup->ItemCount());
        popup->ForEachItem([&](const _PopupItem& item) { ask(textOf(item.keyword.Buffer())); });
    } else if (control.Type() == CNTL_TYPE::boolean) {
        ask("True");
        ask("False");
    }
    return forbidden;
}

PaneSetting PaneEditor::SettingOf(const KeyOption& pair) const {
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    return {textOf(strings.Find(pair.key)), textOf(strings.Find(pair.option))};
}

std::vector<PaneSetting> PaneEditor::ForbiddenBy(std::string_view keyword, std::string_view choice) const {
    std::vector<PaneSetting> settings;
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    const KeyOption asked{strings.Find(keyword), strings.Find(choice)};
    if (asked.option < 0) {
        return settings;
    }
    KVCache change;
    change.Insert(asked.key, asked.option);
    const ConstraintsEngine::Answer answer = constraints.GetEngine()->Test(change);
    for (const KeyOption& pair : answer.conflicts.Pairs()) {
        PaneSetting setting = SettingOf(pair);
        if (std::ranges::find(settings, setting) == settings.end()) {
            settings.push_back(std::move(setting));
        }
    }
    return settings;
}

const std::vector<PaneConflict>& PaneEditor::Conflicts() const {
    if (!conflicts) {
        const auto pairs = conflictPairs(constraints, *constraints.GetCurrentSelections());
        conflicts.emplace().reserve(pairs.size());
        for (const auto& [first, second] : pairs) {
            conflicts->push_back({SettingOf(first), SettingOf(second)});
        }
    }
    return *conflicts;
}

bool PaneEditor::CanBeResolved(std::string_view keyword) const {
    const PPDXControl* control = FindControl(keyword);
    return control != nullptr && LockOf(*control) == PaneLock::none && !isInstallableOption(*control) &&
           !control->IsNoTorkaDriverUI() && !isBidiKeyword(control->Keyword()) &&
           !(paneData != nullptr && paneData->dmtHides(keyword));
}

// Decides which side of a conflict stays: the setting edited last, else the one that differs from its
// default.
bool PaneEditor::PrefersFirst(const KeyOption& first, const KeyOption& second,
                              std::string_view edited) const {
    const PaneSetting one = SettingOf(first);
    const PaneSetting other = SettingOf(second);
    if (one.keyword == edited || other.keyword == edited) {
        return one.keyword == edited;
    }
    const auto isDefault = [this](const PaneSetting& setting) {
        const PPDXControl* control = FindControl(setting.keyword);
        return control == nullptr || DefaultValue(*control) == setting.choice;
    };
    return !isDefault(one) || isDefault(other);
}

PaneResolution PaneEditor::FindResolution(const KeyOption* wanted) const {
    const std::string edited = wanted == nullptr ? lastEdited : SettingOf(*wanted).keyword;
    const auto mayChange = [this](std::int64_t key) {
        return CanBeResolved(textOf(constraints.GetConstraintStrings()->Find(key)));
    };
    const auto prefersFirst = [&](const KeyOption& first, const KeyOption& second) {
        return PrefersFirst(first, second, edited);
    };
    const auto found = findResolution(constraints, {mayChange, prefersFirst}, wanted);
    PaneResolution resolved{found.has_value(), {}};
    for (const KeyOption& change : found.value_or(std::vector<KeyOption>())) {
        resolved.changes.push_back(SettingOf(change));
    }
    return resolved;
}

const PaneResolution& PaneEditor::Resolution() const {
    if (!resolution) {
        resolution = Conflicts().empty() ? PaneResolution{} : FindResolution(nullptr);
    }
    return *resolution;
}

PaneResolution PaneEditor::WayTo(const PPDXControl& control, std::string_view choice) const {
    const auto* popup = dynamic_cast<const PPDXPopupControl*>(&control);
    const bool choosesOne = popup == nullptr || !popup->CanSelectMultipleItems();
    const CStringSoup& strings = *constraints.GetConstraintStrings();
    const KeyOption wanted{strings.Find(std::string_view(textOf(control.Keyword()))), strings.Find(choice)};
    if (!choosesOne || LockOf(control) != PaneLock::none || wanted.key < 0 || wanted.option < 0) {
        return {};
    }
    const PaneResolution found = FindResolution(&wanted);
    return found.changes.size() > 1 ? found : PaneResolution{};
}

bool PaneEditor::Resolve() { return Make(PaneResolution(Resolution())); }

bool PaneEditor::ChangeWithOthers(const PPDXControl& control, std::string_view choice) {
    const PaneResolution found = WayTo(control, choice);
    if (found.solved) {
        lastEdited = control.Keyword();
    }
    return Make(found);
}

bool PaneEditor::Make(const PaneResolution& found) {
    if (!found.solved || found.changes.empty()) {
        return false;
    }
    std::vector<PPDXControl*> changed;
    for (const PaneSetting& setting : found.changes) {
        if (PPDXControl* control = FindControl(setting.keyword)) {
            Apply(*control, setting.choice);
            changed.push_back(control);
        }
    }
    Step step = TakeChanges(changed);
    if (step.IsEmpty()) {
        return false;
    }
    ForgetServerPreset(step);
    Record(std::move(step), false, PaneChange::Kind::resolution);
    return true;
}

} // namespace torka
