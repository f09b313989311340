// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConflictResolution.h"

#include "PPDX/KVEngine/ConflictPairs.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <algorithm>
#include <utility>

namespace torka {
namespace {

constexpr std::uint64_t maximumWork = std::uint64_t{1} << 21U; // pairs and lines: well below half a second
constexpr std::uint64_t workOfPair = 4; // to tell a conflict from those seen before takes longer than a line
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

std::vector<KeyOption> changedPairs(const KVCache& changes, const KVCache& now) {
    std::vector<KeyOption> changed;
    for (const KeyOption& change : changes.Pairs()) {
        if (now.GetItem(change.key) != change.option) {
            changed.push_back(change);
        }
    }
    return changed;
}

// One search, with a limit for all its steps together: most of its time goes into looking for conflicts.
class Resolver {
public:
    Resolver(const UIConstraints& store, const ResolutionRules& theRules, const KeyOption* wantedChange)
        : constraints(store)
        , rules(theRules)
        , now(*store.GetCurrentSelections())
        , wanted(wantedChange)
        , locked(lockedPairs(now, theRules)) {
        if (wanted != nullptr) {
            Visit(now, [this](const ConflictPair& pair) {
                known.Insert(pair);
                return true;
            });
        }
    }

    std::optional<std::vector<KeyOption>> Find();

private:
    bool IsExhausted() const { return work > maximumWork; }
    void Visit(const KVCache& selections, const std::function<bool(const ConflictPair&)>& visit);
    std::optional<ConflictPair> FirstConflict(const KVCache& selections);
    void LeaveOutNeedless(KVCache& changes);

    const UIConstraints& constraints;
    const ResolutionRules& rules;
    const KVCache& now;
    const KeyOption* wanted;
    KVCache locked;
    ConflictPairSet known; // those of the present selections may stay when a change is wanted
    std::uint64_t work = 0;
};

void Resolver::Visit(const KVCache& selections, const std::function<bool(const ConflictPair&)>& visit) {
    ConstraintsEngine engine(&selections, constraints.GetConstraintForest(), constraints.GetKeyForest(),
                             nullptr);
    const std::uint64_t before = work + selections.size();
    std::uint64_t pairs = 0;
    visitConflictPairs(engine, selections, [&](const ConflictPair& pair) {
        work = before + engine.WorkDone() + workOfPair * ++pairs;
        return visit(pair) && !IsExhausted();
    });
    work = before + engine.WorkDone() + workOfPair * pairs;
}

// Returns the first conflict that the change must not leave.
std::optional<ConflictPair> Resolver::FirstConflict(const KVCache& selections) {
    std::optional<ConflictPair> first;
    Visit(selections, [&](const ConflictPair& pair) {
        if (!known.Contains(pair)) {
            first = pair;
        }
        return !first;
    });
    return first;
}

void Resolver::LeaveOutNeedless(KVCache& changes) {
    for (std::size_t i = changes.size(); i-- > 0 && !IsExhausted();) {
        const KeyOption change = changes.GetKV(i);
        const std::int64_t before = now.GetItem(change.key);
        if (before == change.option || (wanted != nullptr && change.key == wanted->key)) {
            continue;
        }
        KVCache without = changes;
        without.Insert(change.key, before);
        KVCache then = now;
        then.merge(without);
        if (!FirstConflict(then) && !IsExhausted()) {
            changes = std::move(without);
        }
    }
}

std::optional<std::vector<KeyOption>> Resolver::Find() {
    KVCache trial = now;
    ConstraintsEngine engine(&trial, constraints.GetConstraintForest(), constraints.GetKeyForest(), &locked);
    KVCache changes;
    if (wanted != nullptr) {
        changes.Insert(wanted->key, wanted->option);
        trial.merge(changes);
    }
    for (int round = 0; round < maximumRounds; ++round) {
        const std::optional<ConflictPair> conflict = FirstConflict(trial);
        if (IsExhausted()) {
            break;
        }
        if (!conflict) {
            LeaveOutNeedless(changes);
            return changedPairs(changes, now);
        }
        ConflictPair sides = *conflict;
        if (!keepsFirst(sides.first, sides.second, locked, rules)) {
            std::swap(sides.first, sides.second);
        }
        bool solved = false;
        for (const KeyOption& kept : {sides.first, sides.second}) {
            KVCache attempt = changes;
            attempt.Insert(kept.key, kept.option);
            engine.LimitWork(maximumWork - std::min(work, maximumWork));
            const std::uint64_t before = engine.WorkDone();
            solved = engine.Solve(attempt, true).conflicts.size() == 0;
            work += engine.WorkDone() - before;
            if (solved) {
                changes = std::move(attempt);
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

} // namespace

std::optional<std::vector<KeyOption>> findResolution(const UIConstraints& constraints,
                                                     const ResolutionRules& rules, const KeyOption* wanted) {
    return Resolver(constraints, rules, wanted).Find();
}

} // namespace torka
