// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConstraintForest.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace torka {

void ConstraintForest::InsertWildcard(std::int64_t key1, std::shared_ptr<const OptionRange> from,
                                      std::int64_t option1, std::shared_ptr<const OptionRange> to,
                                      const KeyOption& pair) {
    Settle(); // earlier lines go first
    trees.FindOrMake(key1, key1)
        .InsertWildcard(std::move(from), std::move(to),
                        {static_cast<std::uint32_t>(key1), static_cast<std::uint32_t>(option1),
                         static_cast<std::uint32_t>(pair.key), static_cast<std::uint32_t>(pair.option)});
}

std::unique_ptr<ItemConstraintList> ConstraintForest::GetConstraintList(std::int64_t key,
                                                                        std::int64_t option) const {
    const KeyConstraintTree* tree = GetTree(key);
    return tree == nullptr ? nullptr : tree->GetItemConstraintList(option);
}

const KeyConstraintTree* ConstraintForest::GetTree(std::int64_t key) const {
    Settle();
    return trees.Find(key);
}

void ConstraintForest::ForEach(
    const std::function<bool(std::int64_t, std::int64_t, const KeyOption&)>& visit) const {
    Settle();
    std::vector<std::int64_t> keys = trees.Ids();
    std::sort(keys.begin(), keys.end());
    std::vector<ConstraintRun> runs;
    for (const std::int64_t key : keys) {
        const KeyConstraintTree& tree = *trees.Find(key);
        for (const std::int64_t option : tree.ActiveOptions()) {
            runs.clear();
            tree.CollectRuns(option, runs);
            for (const ConstraintRun& run : runs) {
                if (!run.ForEach([&](const KeyOption& pair) { return visit(key, option, pair); })) {
                    return;
                }
            }
        }
    }
}

bool ConstraintForest::DisableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2,
                                          std::int64_t option2) {
    return VisitTrees({key, option}, [=](KeyConstraintTree& tree, std::int64_t each) {
        return tree.DisableConstraints(each, key2, option2);
    });
}

// The lists set aside are complete, so the result does not depend on the disabled pair.
bool ConstraintForest::EnableConstraints(std::int64_t key, std::int64_t option, std::int64_t /*key2*/,
                                         std::int64_t /*option2*/) {
    return VisitTrees({key, option}, [](KeyConstraintTree& tree, std::int64_t each) {
        return tree.EnableConstraints(each);
    });
}

void ConstraintForest::clear() {
    trees.clear();
    isSettled = true;
}

// Applies `apply` to the pair's tree (every tree for key -1) and then to each pair that it returns, until no
// new pair comes.
template <typename Apply>
bool ConstraintForest::VisitTrees(const KeyOption& first, Apply apply) {
    Settle();
    bool visited = false;
    KVCache seen;
    std::vector<KeyOption> pending{first};
    while (!pending.empty()) {
        const KeyOption next = pending.back();
        pending.pop_back();
        const auto visit = [&](KeyConstraintTree& tree) {
            visited = true;
            for (const KeyOption& pair : apply(tree, next.option)) {
                if (seen.Lookup(pair) != -1) {
                    continue;
                }
                seen.add(pair);
                pending.push_back(pair);
            }
        };
        if (next.key == -1) {
            std::ranges::for_each(trees.Values(), visit);
        } else if (KeyConstraintTree* tree = trees.Find(next.key)) {
            visit(*tree);
        }
    }
    return visited;
}

} // namespace torka
