// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConstraintsEngine.h"

#include "PPDX/KVEngine/SelectionView.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace torka {

namespace {

constexpr int deepest = 129;
constexpr std::size_t maximumQueued = 128;

const KVCache& orEmpty(const KVCache* cache) {
    static const KVCache empty;
    return cache == nullptr ? empty : *cache;
}

const std::vector<std::int64_t>& optionsOf(const KeyForest* keys, std::int64_t key) {
    static const std::vector<std::int64_t> none;
    const std::vector<std::int64_t>* options = keys == nullptr ? nullptr : keys->GetItems(key);
    return options == nullptr ? none : *options;
}

// Holds everything that one changed pair constrains, to test whether an alternative would be constrained too.
class ConstrainedSet {
public:
    void Add(const ConstraintRun& run) {
        for (const ConstraintRecord& line : run.lines) {
            pairs.add(line.Constrained());
        }
        if (run.range == nullptr) {
            return;
        }
        // The longest range of a key contains its other ranges.
        const OptionRange*& longest = ranges[run.key];
        if (longest == nullptr || longest->count < run.range->count) {
            longest = run.range;
        }
    }

    bool Contains(const KeyOption& pair) const {
        const auto range = ranges.find(pair.key);
        return (range != ranges.end() && range->second->Occurrences(pair.option) > 0) ||
               pairs.Lookup(pair) != -1;
    }

private:
    KVCache pairs;
    std::unordered_map<std::int64_t, const OptionRange*> ranges;
};

} // namespace

ConstraintsEngine::Answer ConstraintsEngine::Test(const KVCache& changeSet) {
    Answer answer;
    const SelectionView view(orEmpty(current), &changeSet);
    for (const KeyOption& changed : changeSet.Pairs()) {
        if (IsExhausted() && answer.conflicts.size() > 0) {
            break;
        }
        TestPair(changed, view, answer);
    }
    return answer;
}

std::vector<KeyOption> ConstraintsEngine::ConflictsOf(const KeyOption& change) {
    std::vector<KeyOption> conflicts;
    const SelectionView view(orEmpty(current), change);
    if (change.key >= 0 && ConflictsWith(change, view)) {
        VisitConflicts(change, view, [&](const KeyOption& hit) {
            conflicts.push_back(hit);
            ++work;
            return conflicts.size() < maximumAnswers;
        });
    }
    return conflicts;
}

bool ConstraintsEngine::HasConflict(const KVCache& changeSet) {
    const SelectionView view(orEmpty(current), &changeSet);
    const auto changes = changeSet.Pairs();
    // Steps of a search differ little, so the pair that conflicted last probably conflicts again.
    if (lastConflict < changes.size() && ConflictsWith(changes[lastConflict], view)) {
        return true;
    }
    for (std::size_t i = 0; i < changes.size(); ++i) {
        if (i != lastConflict && ConflictsWith(changes[i], view)) {
            lastConflict = i;
            return true;
        }
    }
    return false;
}

bool ConstraintsEngine::HasConflict(const KeyOption& change) {
    return change.key >= 0 && ConflictsWith(change, SelectionView(orEmpty(current), change));
}

KVCache ConstraintsEngine::TestLockedStatus(KVCache& alternatives) const {
    KVCache hits;
    if (locked == nullptr || locked->size() == 0) {
        return hits;
    }
    KVCache kept;
    for (const KeyOption& pair : alternatives.Pairs()) {
        if (locked->Lookup({pair.key, -1}) != -1 || locked->Lookup(pair) != -1) {
            hits.Insert(pair.key, orEmpty(current).GetItem(pair.key));
        } else {
            kept.add(pair);
        }
    }
    alternatives = std::move(kept);
    return hits;
}

ConstraintsEngine::Answer ConstraintsEngine::RSolve(KVCache& changeSet, bool keepChanged) {
    for (;;) {
        ++depth;
        Answer answer = Test(changeSet);
        if (answer.conflicts.size() == 0 || depth >= deepest) {
            return answer;
        }
        work += answer.alternatives.size();
        KVCache hits = TestLockedStatus(answer.alternatives);
        if (depth == 1 && hits.size() > 0) {
            return {std::move(hits), {}};
        }

        while (answer.alternatives.size() > 0) {
            if (IsExhausted()) {
                return answer;
            }
            ++work;
            const KeyOption alternative = answer.alternatives.pop_front();
            if (keepChanged && changeSet.FindKey(alternative.key) != nullptr) {
                continue;
            }
            changeSet.Insert(alternative.key, alternative.option);
            if (!HasConflict(changeSet)) {
                return {};
            }
            work += visited.size() + changeSet.size();
            if (overflowed || std::find(visited.begin(), visited.end(), changeSet) != visited.end()) {
                continue;
            }
            queue.push_back(changeSet);
            overflowed = queue.size() > maximumQueued;
        }
        if (queue.empty()) {
            return answer;
        }
        changeSet = queue.front();
        visited.push_back(std::move(queue.front()));
        queue.pop_front();
    }
}

ConstraintsEngine::Answer ConstraintsEngine::Solve(KVCache& changeSet, bool keepChanged) {
    purge();
    Answer answer = RSolve(changeSet, keepChanged);
    purge();
    return answer;
}

KVCache ConstraintsEngine::ListCurrentConstraints(std::int64_t key) {
    KVCache listed;
    if (key < 0) {
        return listed;
    }
    const SelectionView view(orEmpty(current));
    for (const std::int64_t option : optionsOf(keys, key)) {
        if (ConflictsWith({key, option}, view)) {
            listed.add({key, option});
        }
    }
    return listed;
}

KVCache ConstraintsEngine::ListBlockingConstraints(std::int64_t key1, std::int64_t excludedOption,
                                                   std::int64_t key2) {
    KVCache listed;
    if (key1 < 0 || excludedOption < 0 || key2 < 0) {
        return listed;
    }
    // The options to block, each with the last option of key2 that blocks it.
    std::unordered_map<std::int64_t, std::size_t> others;
    for (const std::int64_t option : optionsOf(keys, key1)) {
        if (option != excludedOption) {
            others.try_emplace(option, 0);
        }
    }

    std::size_t round = 0;
    for (const std::int64_t option : optionsOf(keys, key2)) {
        ++round;
        std::size_t blocked = 0;
        const auto blocks = [&](const KeyOption& pair) {
            if (pair.key != key1) {
                return true;
            }
            const auto other = others.find(pair.option);
            if (other == others.end()) {
                return false;
            }
            if (std::exchange(other->second, round) != round) {
                ++blocked;
            }
            return true;
        };
        bool onlyOthers = true;
        for (const ConstraintRun& run : RunsOf({key2, option})) {
            ConstraintRun once = run;
            once.repeat = 1;
            onlyOthers = onlyOthers && ((run.range != nullptr && run.key != key1) || once.ForEach(blocks));
        }
        if (onlyOthers && blocked == others.size()) {
            listed.add({key2, option});
        }
    }
    return listed;
}

KVCache ConstraintsEngine::ListScreenedConstraints(const KVCache& selections, bool exact, std::int64_t key) {
    KVCache listed;
    const SelectionView view(selections);
    for (const std::int64_t option : optionsOf(keys, key)) {
        const KeyOption pair{key, option};
        if (exact ? GathersExactly(pair, selections, view) : ConflictsWith(pair, view)) {
            listed.Insert(key, option);
        }
    }
    return listed;
}

bool ConstraintsEngine::ConflictsWith(const KeyOption& changed, const SelectionView& view) {
    const KeyConstraintTree* tree = TreeOf(changed.key);
    const auto isHit = [&](const ConstraintRun& run) { return view.ContainsAnyOf(run); };
    return tree != nullptr && tree->AnyRun(changed.option, isHit, work);
}

void ConstraintsEngine::TestPair(const KeyOption& changed, const SelectionView& view, Answer& answer) {
    if (!ConflictsWith(changed, view)) {
        return;
    }
    ConstrainedSet constrained;
    for (const ConstraintRun& run : RunsOf(changed)) {
        work += run.lines.size() + 1;
        constrained.Add(run);
    }

    // Computes the alternatives for a selected pair once; they do not depend on the number of hits.
    std::unordered_map<std::int64_t, std::vector<KeyOption>> offers;
    const auto offerFor = [&](const KeyOption& hit) -> const std::vector<KeyOption>& {
        const auto [offer, isNew] = offers.try_emplace(hit.key);
        if (isNew) {
            const std::vector<std::int64_t>& options = optionsOf(keys, hit.key);
            work += options.size();
            for (auto option = options.rbegin(); option != options.rend(); ++option) {
                if (!constrained.Contains({hit.key, *option})) {
                    offer->second.push_back({hit.key, *option});
                }
            }
        }
        return offer->second;
    };
    const auto found = [&](const KeyOption& hit) {
        answer.conflicts.add(hit);
        ++work;
        if (answer.alternatives.size() < maximumAnswers) {
            const std::vector<KeyOption>& offer = offerFor(hit);
            const std::size_t count = std::min(offer.size(), maximumAnswers - answer.alternatives.size());
            std::for_each_n(offer.begin(), count,
                            [&](const KeyOption& pair) { answer.alternatives.add(pair); });
            work += count;
        }
        return answer.conflicts.size() < maximumAnswers && !IsExhausted();
    };

    VisitConflicts(changed, view, found);
}

// Calls visit for every selected pair that the changed one constrains, last lines first, until it returns
// false. REQUIRES: the key has a tree.
template <typename Visit>
void ConstraintsEngine::VisitConflicts(const KeyOption& changed, const SelectionView& view, Visit visit) {
    const KeyConstraintTree& tree = *TreeOf(changed.key);
    const auto options = changed.option == -1 ? tree.ActiveOptions() : std::vector{changed.option};
    for (auto option = options.rbegin(); option != options.rend(); ++option) {
        runs.clear();
        tree.CollectRuns(*option, runs);
        work += runs.size();
        for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
            if (!view.ForEachBackwards(*run, visit)) {
                return;
            }
        }
    }
}

// Tells whether the constrained pairs among the selections are exactly the selections, and at least one.
bool ConstraintsEngine::GathersExactly(const KeyOption& constraining, const KVCache& selections,
                                       const SelectionView& view) {
    KVCache gathered;
    const auto gather = [&](const KeyOption& pair) {
        gathered.add(pair);
        return gathered.size() <= selections.size();
    };
    const KeyConstraintTree* tree = TreeOf(constraining.key);
    if (tree == nullptr) {
        return false;
    }
    const auto options = constraining.option == -1 ? tree->ActiveOptions() : std::vector{constraining.option};
    for (const std::int64_t option : options) {
        runs.clear();
        tree->CollectRuns(option, runs);
        for (const ConstraintRun& run : runs) {
            if (!view.ForEachBackwards(run, gather)) {
                return false;
            }
        }
    }
    return gathered.size() > 0 && gathered == selections;
}

const KeyConstraintTree* ConstraintsEngine::TreeOf(std::int64_t key) const {
    return forest == nullptr ? nullptr : forest->GetTree(key);
}

// Returns runs that together hold every constrained pair, for -1 by any option. Order and repeats are exact
// only for other options than -1.
const std::vector<ConstraintRun>& ConstraintsEngine::RunsOf(const KeyOption& constraining) {
    runs.clear();
    const KeyConstraintTree* tree = TreeOf(constraining.key);
    if (tree == nullptr) {
        return runs;
    }
    if (constraining.option == -1) {
        tree->CollectAllRuns(runs);
    } else {
        tree->CollectRuns(constraining.option, runs);
    }
    return runs;
}

void ConstraintsEngine::purge() {
    queue.clear();
    visited.clear();
    overflowed = false;
    depth = 0;
    workDone += std::exchange(work, 0);
}

} // namespace torka
