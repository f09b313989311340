// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/IdMap.h"
#include "PPDX/KVEngine/KeyConstraintTree.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>

namespace torka {

// Records which options constrain which others: a tree per constraining key. Records only the given
// direction.
//
// A tree holds the lines of its key. They are sorted before the first query. Identifiers belong to the
// store's string table and are not negative, except where a call says so.
//
// Owns the trees. UIConstraints owns two forests, of constraints and of requirements.
class ConstraintForest {
public:
    ConstraintForest() = default;
    virtual ~ConstraintForest() = default;
    ConstraintForest(const ConstraintForest&) = delete;
    ConstraintForest& operator=(const ConstraintForest&) = delete;

    // key1=option1 constrains key2=option2.
    void insert(std::int64_t key1, std::int64_t option1, std::int64_t key2, std::int64_t option2) {
        isSettled = false;
        trees.FindOrMake(key1, key1)
            .Add({static_cast<std::uint32_t>(key1), static_cast<std::uint32_t>(option1),
                  static_cast<std::uint32_t>(key2), static_cast<std::uint32_t>(option2)});
    }
    // Inserts a line with an empty option. `from` is the range of constraining options, or null when option1
    // is the only one. `to` is the range of key's constrained options, or null when pair is the only one.
    // REQUIRES: at least one range; no range is empty.
    void InsertWildcard(std::int64_t key1, std::shared_ptr<const OptionRange> from, std::int64_t option1,
                        std::shared_ptr<const OptionRange> to, const KeyOption& pair);
    // Sorts the lines inserted so far. Every query does so when necessary.
    void Settle() const;

    // Returns null when the key has no tree. Valid until the forest changes.
    const KeyConstraintTree* GetTree(std::int64_t key) const;

    // Calls visit(key, option, constrained pair) for every recorded constraint: keys ascending, options
    // ascending, then in list order. Stops when visit returns false.
    void ForEach(const std::function<bool(std::int64_t, std::int64_t, const KeyOption&)>& visit) const;

    // Given interface; no caller here
    void insert(std::int64_t key1, std::int64_t option1, const KeyOption& pair) {
        insert(key1, option1, pair.key, pair.option);
    }
    // Returns a new list of what key=option constrains (-1: every option of the key); null when the key has
    // no tree. Expands wildcard lines; use ForEach to look at everything.
    std::unique_ptr<ItemConstraintList> GetConstraintList(std::int64_t key, std::int64_t option) const;
    // Removes the pairs of key2 with option2 (-1: any) from what key=option constrains (-1: every key, every
    // option), and from what those pairs constrain in turn. Returns true when there was a tree to visit.
    bool DisableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Restores what was disabled for key=option, and for the restored pairs in turn.
    bool EnableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);
    void clear();

private:
    template <typename Apply>
    bool VisitTrees(const KeyOption& first, Apply apply);

    mutable IdMap<KeyConstraintTree> trees;
    mutable bool isSettled = true;
};

inline void ConstraintForest::Settle() const {
    if (!isSettled) {
        std::ranges::for_each(trees.Values(), &KeyConstraintTree::Settle);
        isSettled = true;
    }
}

} // namespace torka
