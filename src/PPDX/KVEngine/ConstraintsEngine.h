#pragma once

#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/KVCache.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace torka {

class SelectionView;

// Finds what a proposed change would conflict with, offers other options for what conflicts, and searches
// breadth-first for a change that conflicts with nothing.
//
// Owns none of what it is built with, which must outlive it; the selections are the live ones, read at each
// call. Any of them may be null and then counts as empty. In the locked list an option of -1 locks every
// option of its key.
class ConstraintsEngine {
public:
    // What was found: the selected pairs in conflict, and other options for their keys. Pairs may repeat.
    struct Answer {
        KVCache conflicts;
        KVCache alternatives;
    };

    // A description made to blow an answer up finds it cut at this many pairs each, and a search given up as
    // unsolved once it has looked at so many pairs and lines, which takes a few seconds.
    static constexpr std::size_t mostAnswers = std::size_t{1} << 21U;
    static constexpr std::uint64_t mostWork = std::uint64_t{1} << 28U;

    ConstraintsEngine() = default;
    ConstraintsEngine(const KVCache* selections, const ConstraintForest* constraints,
                      const KeyForest* options, const KVCache* lockedPairs)
        : current(selections)
        , forest(constraints)
        , keys(options)
        , locked(lockedPairs) {}
    virtual ~ConstraintsEngine() = default;

    // What the change set, once selected, conflicts with.
    Answer Test(const KVCache& changeSet);
    // Whether Test would find any conflict.
    bool HasConflict(const KVCache& changeSet);
    // The same for a change set of this pair alone, an empty one when its key is negative.
    bool HasConflict(const KeyOption& change);

    // Takes the locked ones out of the alternatives; returns their keys with what is selected now.
    KVCache TestLockedStatus(KVCache& alternatives) const;

    // Changes the change set, step by step, into one without conflicts, and returns what is left of them:
    // nothing when solved. keepChanged: what the change set holds already stays. Solve starts from a clean
    // state and leaves one.
    Answer RSolve(KVCache& changeSet, bool keepChanged);
    Answer Solve(KVCache& changeSet, bool keepChanged);
    // Pairs and lines that a search may look at; an answer that it needs on the way is cut there too.
    void LimitWork(std::uint64_t pairs) { workLimit = pairs; }
    // What the last Solve looked at.
    std::uint64_t WorkDone() const { return workDone; }

    // The options of key that conflict with what is selected now, by what they constrain themselves.
    KVCache ListCurrentConstraints(std::int64_t key);
    // The options of key2 that constrain exactly the options of key1 other than excludedOption.
    KVCache ListBlockingConstraints(std::int64_t key1, std::int64_t excludedOption, std::int64_t key2);
    // The last option of key that constrains any of the given selections; exact: constrains just those.
    KVCache ListScreenedConstraints(const KVCache& selections, bool exact, std::int64_t key);

private:
    const KeyConstraintTree* TreeOf(std::int64_t key) const;
    bool IsExhausted() const { return depth > 0 && work > workLimit; }
    bool ConflictsWith(const KeyOption& changed, const SelectionView& view);
    void TestPair(const KeyOption& changed, const SelectionView& view, Answer& answer);
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

    std::uint64_t workLimit = mostWork;
    std::uint64_t work = 0;          // pairs, lines and states looked at since the last purge
    std::uint64_t workDone = 0;      // at that purge
    std::vector<ConstraintRun> runs; // kept between calls for its room only
    std::size_t lastConflict = 0;    // where in the change set the last conflict was found
};

} // namespace torka
