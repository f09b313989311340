// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/KVCache.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace torka {

class SelectionView;

// Finds the conflicts of a proposed change, offers other options for the conflicting keys, and searches
// breadth-first for a change without conflicts.
//
// Owns none of its inputs, which must outlive it. Reads the live selections at each call. A null input counts
// as empty. In the locked list an option of -1 locks every option of its key.
class ConstraintsEngine {
public:
    // The selected pairs in conflict, and other options for their keys. Pairs may repeat.
    struct Answer {
        KVCache conflicts;
        KVCache alternatives;
    };

    // Limits against a description made to cause huge answers. Conflicts and alternatives each end at
    // maximumAnswers pairs. A search ends unsolved after maximumWork pairs and lines, which takes a few
    // seconds.
    static constexpr std::size_t maximumAnswers = std::size_t{1} << 21U;
    static constexpr std::uint64_t maximumWork = std::uint64_t{1} << 28U;

    ConstraintsEngine() = default;
    ConstraintsEngine(const KVCache* selections, const ConstraintForest* constraints,
                      const KeyForest* options, const KVCache* lockedPairs)
        : current(selections)
        , forest(constraints)
        , keys(options)
        , locked(lockedPairs) {}
    virtual ~ConstraintsEngine() = default;

    // Returns the conflicts of the change set once it is selected.
    Answer Test(const KVCache& changeSet);
    // Returns the conflicts of Test for a change set of this pair alone.
    std::vector<KeyOption> ConflictsOf(const KeyOption& change);
    // Tells whether Test would find a conflict.
    bool HasConflict(const KVCache& changeSet);
    // Does the same for a change set of this pair alone. A negative key means an empty change set.
    bool HasConflict(const KeyOption& change);

    // Removes locked pairs from the alternatives. Returns their keys with the current selection.
    KVCache TestLockedStatus(KVCache& alternatives) const;

    // Changes the change set step by step into one without conflicts. Returns the remaining conflicts, none
    // when solved. With keepChanged the initial content of the change set stays. Solve starts from a clean
    // state and leaves one.
    Answer RSolve(KVCache& changeSet, bool keepChanged);
    Answer Solve(KVCache& changeSet, bool keepChanged);
    // Sets the maximum of pairs and lines that a search may visit. An intermediate answer is cut there too.
    void LimitWork(std::uint64_t pairs) { workLimit = pairs; }
    // Returns the number of pairs, lines and states that all calls so far have visited.
    std::uint64_t WorkDone() const { return workDone + work; }

    // Given interface; no caller here
    // Returns the options of key that constrain something selected now.
    KVCache ListCurrentConstraints(std::int64_t key);
    // Returns the options of key2 that constrain exactly the options of key1 other than excludedOption.
    KVCache ListBlockingConstraints(std::int64_t key1, std::int64_t excludedOption, std::int64_t key2);
    // Returns the last option of key that constrains any of the given selections; with exact, just those.
    KVCache ListScreenedConstraints(const KVCache& selections, bool exact, std::int64_t key);

private:
    const KeyConstraintTree* TreeOf(std::int64_t key) const;
    bool IsExhausted() const { return depth > 0 && work > workLimit; }
    bool ConflictsWith(const KeyOption& changed, const SelectionView& view);
    void TestPair(const KeyOption& changed, const SelectionView& view, Answer& answer);
    template <typename Visit>
    void VisitConflicts(const KeyOption& changed, const SelectionView& view, Visit visit);
    bool GathersExactly(const KeyOption& constraining, const KVCache& selections, const SelectionView& view);
    const std::vector<ConstraintRun>& RunsOf(const KeyOption& constraining);
    void purge();

    std::deque<KVCache> queue;
    std::vector<KVCache> visited;
    const KVCache* current = nullptr;
    const ConstraintForest* forest = nullptr;
    const KeyForest* keys = nullptr;
    const KVCache* locked = nullptr;
    bool overflowed = false;
    int depth = 0;

    std::uint64_t workLimit = maximumWork;
    std::uint64_t work = 0;          // pairs, lines and states visited since the last purge
    std::uint64_t workDone = 0;      // before it
    std::vector<ConstraintRun> runs; // kept between calls only for its capacity
    std::size_t lastConflict = 0;    // index in the change set of the last conflict
};

} // namespace torka
