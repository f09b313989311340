#pragma once

#include "PPDX/KVEngine/KeyConstraintTree.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace torka {

// Which option constrains which others: a tree per constraining key. Only the direction given is recorded.
//
// Owns its trees; UIConstraints owns two forests, of constraints and of requirements.
class ConstraintForest {
public:
    ConstraintForest() = default;
    virtual ~ConstraintForest() = default;
    ConstraintForest(const ConstraintForest&) = delete;
    ConstraintForest& operator=(const ConstraintForest&) = delete;

    // key1=option1 constrains key2=option2.
    void insert(std::int64_t key1, std::int64_t option1, std::int64_t key2, std::int64_t option2);
    void insert(std::int64_t key1, std::int64_t option1, const KeyOption& pair);
    // A line with an empty option, as KeyConstraintTree::InsertWildcard takes it.
    void InsertWildcard(std::int64_t key1, std::shared_ptr<const OptionRange> from, std::int64_t option1,
                        std::shared_ptr<const OptionRange> to, const KeyOption& pair);

    // A new list of what key=option constrains (-1: what every option of the key does); null when the key has
    // no tree. Wildcard lines are multiplied out here: for looking at everything use ForEach.
    std::unique_ptr<ItemConstraintList> GetConstraintList(std::int64_t key, std::int64_t option) const;
    const KeyConstraintTree* GetTree(std::int64_t key) const;

    // Calls visit(key, option, constrained pair) for everything recorded: keys ascending, options ascending,
    // then in list order. Stops when visit answers false.
    void ForEach(const std::function<bool(std::int64_t, std::int64_t, const KeyOption&)>& visit) const;

    // Takes the pairs of key2 with option2 (-1: any) out of what key=option constrains (-1: every key, every
    // option), and out of what those pairs constrain in turn. True when a tree was there to visit.
    bool DisableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Brings back what was disabled for key=option, and for the pairs brought back in turn.
    bool EnableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);

    void clear() { trees.clear(); }

private:
    KeyConstraintTree& TreeOf(std::int64_t key);
    template <typename Apply>
    bool VisitTrees(const KeyOption& first, Apply apply);

    IdMap<std::unique_ptr<KeyConstraintTree>> trees;
};

} // namespace torka
