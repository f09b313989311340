// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConflictPairs.h"
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

constexpr std::uint64_t maximumWork = std::uint64_t{1} << 22U; // of one search: well below a second
constexpr int maximumRounds = 64;

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
        conflicts.emplace();
        for (const auto& [first, second] : conflictPairs(constraints, *constraints.GetCurrentSelections())) {
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

KVCache PaneEditor::LockedPairs(const KVCache& selections) const {
    KVCache locked;
    for (const KeyOption& pair : selections.Pairs()) {
        if (!CanBeResolved(textOf(constraints.GetConstraintStrings()->Find(pair.key)))) {
            locked.Insert(pair.key, -1);
        }
    }
    return locked;
}

// Decides which side of a conflict stays. In this order: a setting that cannot be changed, the one edited
// last, the one that differs from its default.
bool PaneEditor::PrefersFirst(const KeyOption& first, const KeyOption& second, const KVCache& locked,
                              std::string_view edited) const {
    const bool firstLocked = locked.FindKey(first.key) != nullptr;
    if (firstLocked != (locked.FindKey(second.key) != nullptr)) {
        return firstLocked;
    }
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

std::vector<std::pair<KeyOption, KeyOption>> PaneEditor::PairsToResolve(const KVCache& selections,
                                                                        const KeyOption* wanted) const {
    auto pairs = conflictPairs(constraints, selections);
    if (wanted != nullptr) {
        const auto known = conflictPairs(constraints, *constraints.GetCurrentSelections());
        std::erase_if(pairs, [&](const auto& pair) { return std::ranges::find(known, pair) != known.end(); });
    }
    return pairs;
}

void PaneEditor::LeaveOutNeedless(KVCache& changes, const KeyOption* wanted) const {
    const KVCache& now = *constraints.GetCurrentSelections();
    for (std::size_t i = changes.size(); i-- > 0;) {
        const KeyOption change = changes.GetKV(i);
        const std::int64_t before = now.GetItem(change.key);
        if (before == change.option || (wanted != nullptr && change.key == wanted->key)) {
            continue;
        }
        KVCache without = changes;
        without.Insert(change.key, before);
        KVCache then = now;
        then.merge(without);
        if (PairsToResolve(then, wanted).empty()) {
            changes = std::move(without);
        }
    }
}

PaneResolution PaneEditor::FindResolution(const KeyOption* wanted) const {
    const KVCache& now = *constraints.GetCurrentSelections();
    const KVCache locked = LockedPairs(now);
    KVCache trial = now;
    ConstraintsEngine engine(&trial, constraints.GetConstraintForest(), constraints.GetKeyForest(), &locked);
    engine.LimitWork(maximumWork);
    KVCache changes;
    std::string edited = lastEdited;
    if (wanted != nullptr) {
        changes.Insert(wanted->key, wanted->option);
        trial.merge(changes);
        edited = SettingOf(*wanted).keyword;
    }
    for (int round = 0; round < maximumRounds; ++round) {
        const auto pairs = PairsToResolve(trial, wanted);
        if (pairs.empty()) {
            LeaveOutNeedless(changes, wanted);
            PaneResolution found{true, {}};
            for (const KeyOption& change : changes.Pairs()) {
                if (now.GetItem(change.key) != change.option) {
                    found.changes.push_back(SettingOf(change));
                }
            }
            return found;
        }
        std::pair<KeyOption, KeyOption> sides = pairs.front();
        if (!PrefersFirst(sides.first, sides.second, locked, edited)) {
            std::swap(sides.first, sides.second);
        }
        bool solved = false;
        for (const KeyOption& kept : {sides.first, sides.second}) {
            KVCache attempt = changes;
            attempt.Insert(kept.key, kept.option);
            if (engine.Solve(attempt, true).conflicts.size() == 0) {
                changes = std::move(attempt);
                solved = true;
                break;
            }
        }
        if (!solved) {
            break;
        }
        trial.merge(changes);
    }
    return {};
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
