#pragma once

#include "PPDX/KVEngine/ConstraintRun.h"
#include "PPDX/KVEngine/IdMap.h"
#include "PPDX/KVEngine/ItemConstraintList.h"

#include <cstdint>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace torka {

// All that the options of one key constrain: a list per option. ConstraintForest owns the trees.
//
// A line that leaves out an option is kept once and never multiplied out; the lists that it belongs to are
// put together when they are asked for. Only disabling writes such lists out, one option at a time.
//
// Invariants:
// (1) Of an option's list come first its own pairs in active, then the lines that apply to it, in line order;
//     lines before its entry in writtenOut are among the pairs already.
// (2) Once there is a line, what is inserted becomes a line too, so that the order of insertion is kept.
class KeyConstraintTree {
public:
    explicit KeyConstraintTree(std::int64_t key)
        : constrainingKey(key) {}
    virtual ~KeyConstraintTree() = default;
    KeyConstraintTree(const KeyConstraintTree&) = delete;
    KeyConstraintTree& operator=(const KeyConstraintTree&) = delete;

    std::int64_t Key() const { return constrainingKey; }

    // Appends the pair to the active list of the option.
    void insert(std::int64_t option, const KeyOption& pair);

    // Appends a line with an empty option. from is the range of constraining options, or null when option is
    // the only one; to is the range of key's constrained options, or null when pair is the only one.
    // REQUIRES: at least one range, and none that is empty.
    void InsertWildcard(std::shared_ptr<const OptionRange> from, std::int64_t option,
                        std::shared_ptr<const OptionRange> to, const KeyOption& pair);

    // A new list of what the option constrains; for -1, what every option constrains, options ascending.
    std::unique_ptr<ItemConstraintList> GetItemConstraintList(std::int64_t option) const;

    // Appends the runs of one option's list (not -1) in order, without expanding any.
    void CollectRuns(std::int64_t option, std::vector<ConstraintRun>& runs) const;
    // Appends runs that hold every pair of every option's list at least once, in no order.
    void CollectAllRuns(std::vector<ConstraintRun>& runs) const;
    // The options that have a list, ascending.
    std::vector<std::int64_t> ActiveOptions() const;

    // Sets aside a copy of the option's list (-1: of every option), unless one is set aside already, and
    // takes out of the active one the pairs of key2 with option2 (-1: with any option). Returns the pairs
    // taken out.
    std::vector<KeyOption> DisableConstraints(std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Makes the lists set aside active again, and returns the pairs that this brought back.
    std::vector<KeyOption> EnableConstraints(std::int64_t option);

private:
    struct Line {
        std::shared_ptr<const OptionRange> from;
        std::shared_ptr<const OptionRange> to;
        std::int64_t option = -1;
        KeyOption pair;
    };

    static ConstraintRun RunOf(const Line& line, std::size_t repeat);
    bool HasList(std::int64_t option) const;
    ItemConstraintList& WriteOut(std::int64_t option);

    std::int64_t constrainingKey;
    IdMap<ItemConstraintList> active;
    std::map<std::int64_t, ItemConstraintList> setAside;

    std::vector<Line> lines;
    std::vector<std::size_t> manyOptionLines; // lines with a range of options
    std::unordered_map<std::int64_t, std::vector<std::size_t>> oneOptionLines; // the others, by option
    std::unordered_map<std::int64_t, std::size_t> writtenOut;
};

} // namespace torka
