// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConflictResolution.h"

#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <algorithm>
#include <utility>

namespace torka {
namespace {

constexpr std::uint64_t maximumWork = std::uint64_t{1} << 22U; // of one search: well below a second
constexpr int maximumRounds = 64;

KVCache lockedPairs(const KVCache& selections, const ResolutionRules& rules) {
    KVCache locked;
    for (const KeyOption& pair : selections.Pairs()) {
        if (!rules.mayChange(pair.key)) {
            locked.Insert(pair.key, -1);
        }
    }
    return locked;
}

// A setting that cannot be changed stays.
bool keepsFirst(const KeyOption& first, const KeyOption& second, const KVCache& locked,
                const ResolutionRules& rules) {
    const bool firstLocked = locked.FindKey(first.key) != nullptr;
    if (firstLocked != (locked.FindKey(second.key) != nullptr)) {
        return firstLocked;
    }
    return rules.prefersFirst(first, second);
}

// Conflicts of these selections; with a wanted change only those that the present ones lack.
std::vector<std::pair<KeyOption, KeyOption>>
pairsToResolve(const UIConstraints& constraints, const KVCache& selections, const KeyOption* wanted) {
    auto pairs = conflictPairs(constraints, selections);
    if (wanted != nullptr) {
        const auto known = conflictPairs(constraints, *constraints.GetCurrentSelections());
        std::erase_if(pairs, [&](const auto& pair) { return std::ranges::find(known, pair) != known.end(); });
    }
    return pairs;
}

void leaveOutNeedless(const UIConstraints& constraints, KVCache& changes, const KeyOption* wanted) {
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
        if (pairsToResolve(constraints, then, wanted).empty()) {
            changes = std::move(without);
        }
    }
}

std::vector<KeyOption> changedPairs(const KVCache& changes, const KVCache& now) {
    std::vector<KeyOption> changed;
    for (const KeyOption& change : changes.Pairs()) {
        if (now.GetItem(change.key) != change.option) {
            changed.push_back(change);
        }
    }
    return changed;
}

} // namespace

std::optional<std::vector<KeyOption>> findResolution(const UIConstraints& constraints,
                                                     const ResolutionRules& rules, const KeyOption* wanted) {
    const KVCache& now = *constraints.GetCurrentSelections();
    const KVCache locked = lockedPairs(now, rules);
    KVCache trial = now;
    ConstraintsEngine engine(&trial, constraints.GetConstraintForest(), constraints.GetKeyForest(), &locked);
    engine.LimitWork(maximumWork);
    KVCache changes;
    if (wanted != nullptr) {
        changes.Insert(wanted->key, wanted->option);
        trial.merge(changes);
    }
    for (int round = 0; round < maximumRounds; ++round) {
        const auto pairs = pairsToResolve(constraints, trial, wanted);
        if (pairs.empty()) {
            leaveOutNeedless(constraints, changes, wanted);
            return changedPairs(changes, now);
        }
        std::pair<KeyOption, KeyOption> sides = pairs.front();
        if (!keepsFirst(sides.first, sides.second, locked, rules)) {
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
    return std::nullopt;
}

} // namespace torka
