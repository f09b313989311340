#pragma once

#include "PPDX/KVEngine/IdMap.h"
#include "PPDX/KVEngine/KeyConstraintTree.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace torka {

// Which option constrains which others: a tree per constraining key. Only the direction given is recorded.
//
// Lines that name both options are gathered in one array, which is sorted before the first question about
// them; a tree is a stretch of it. Identifiers are those of the store's string table, none negative but where
// a call says so.
//
// Owns lines and trees; UIConstraints owns two forests, of constraints and of requirements.
class ConstraintForest {
public:
    ConstraintForest() = default;
    virtual ~ConstraintForest() = default;
    ConstraintForest(const ConstraintForest&) = delete;
    ConstraintForest& operator=(const ConstraintForest&) = delete;

    // key1=option1 constrains key2=option2.
    void insert(std::int64_t key1, std::int64_t option1, std::int64_t key2, std::int64_t option2) {
        records.push_back({static_cast<std::uint32_t>(key1), static_cast<std::uint32_t>(option1),
                           static_cast<std::uint32_t>(key2), static_cast<std::uint32_t>(option2)});
    }
    void insert(std::int64_t key1, std::int64_t option1, const KeyOption& pair) {
        insert(key1, option1, pair.key, pair.option);
    }
    // A line with an empty option. from is the range of constraining options, or null when option1 is the
    // only one; to is the range of key's constrained options, or null when pair is the only one.
    // REQUIRES: at least one range, and none that is empty.
    void InsertWildcard(std::int64_t key1, std::shared_ptr<const OptionRange> from, std::int64_t option1,
                        std::shared_ptr<const OptionRange> to, const KeyOption& pair);
    // Puts the lines inserted so far in order. Every question does it when it is needed.
    void Settle() const;

    // A new list of what key=option constrains (-1: what every option of the key does); null when the key has
    // no tree. Wildcard lines are multiplied out here: for looking at everything use ForEach.
    std::unique_ptr<ItemConstraintList> GetConstraintList(std::int64_t key, std::int64_t option) const;
    // Null when the key has none; valid until the forest changes.
    const KeyConstraintTree* GetTree(std::int64_t key) const;

    // Calls visit(key, option, constrained pair) for everything recorded: keys ascending, options ascending,
    // then in list order. Stops when visit answers false.
    void ForEach(const std::function<bool(std::int64_t, std::int64_t, const KeyOption&)>& visit) const;

    // Takes the pairs of key2 with option2 (-1: any) out of what key=option constrains (-1: every key, every
    // option), and out of what those pairs constrain in turn. True when a tree was there to visit.
    bool DisableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Brings back what was disabled for key=option, and for the pairs brought back in turn.
    bool EnableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2, std::int64_t option2);

    void clear();

private:
    template <typename Apply>
    bool VisitTrees(const KeyOption& first, Apply apply);
    void SettleLines() const;

    // The first `settled` ones ascending by key1, then option1, then in the order of insertion; behind them
    // those that were inserted since.
    mutable std::vector<ConstraintRecord> records;
    mutable std::size_t settled = 0;
    mutable IdMap<KeyConstraintTree> trees;
};

inline void ConstraintForest::Settle() const {
    if (settled != records.size()) {
        SettleLines();
    }
}

} // namespace torka
