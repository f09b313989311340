#include "PPDX/KVEngine/ConstraintForest.h"

#include <algorithm>
#include <utility>

namespace torka {

void ConstraintForest::insert(std::int64_t key1, std::int64_t option1, std::int64_t key2,
                              std::int64_t option2) {
    insert(key1, option1, {key2, option2});
}

void ConstraintForest::insert(std::int64_t key1, std::int64_t option1, const KeyOption& pair) {
    TreeOf(key1).insert(option1, pair);
}

void ConstraintForest::InsertWildcard(std::int64_t key1, std::shared_ptr<const OptionRange> from,
                                      std::int64_t option1, std::shared_ptr<const OptionRange> to,
                                      const KeyOption& pair) {
    TreeOf(key1).InsertWildcard(std::move(from), option1, std::move(to), pair);
}

std::unique_ptr<ItemConstraintList> ConstraintForest::GetConstraintList(std::int64_t key,
                                                                        std::int64_t option) const {
    const KeyConstraintTree* tree = GetTree(key);
    return tree == nullptr ? nullptr : tree->GetItemConstraintList(option);
}

const KeyConstraintTree* ConstraintForest::GetTree(std::int64_t key) const {
    const auto* found = trees.Find(key);
    return found == nullptr ? nullptr : found->get();
}

void ConstraintForest::ForEach(
    const std::function<bool(std::int64_t, std::int64_t, const KeyOption&)>& visit) const {
    std::vector<std::int64_t> keys = trees.Ids();
    std::sort(keys.begin(), keys.end());
    std::vector<ConstraintRun> runs;
    for (const std::int64_t key : keys) {
        const KeyConstraintTree& tree = *GetTree(key);
        for (const std::int64_t option : tree.ActiveOptions()) {
            runs.clear();
            tree.CollectRuns(option, runs);
            for (const ConstraintRun& run : runs)
                if (!run.ForEach([&](const KeyOption& pair) { return visit(key, option, pair); }))
                    return;
        }
    }
}

bool ConstraintForest::DisableConstraints(std::int64_t key, std::int64_t option, std::int64_t key2,
                                          std::int64_t option2) {
    return VisitTrees({key, option}, [=](KeyConstraintTree& tree, std::int64_t each) {
        return tree.DisableConstraints(each, key2, option2);
    });
}

// The lists set aside are whole, so what they bring back does not depend on the pair that was disabled.
bool ConstraintForest::EnableConstraints(std::int64_t key, std::int64_t option, std::int64_t /*key2*/,
                                         std::int64_t /*option2*/) {
    return VisitTrees({key, option}, [](KeyConstraintTree& tree, std::int64_t each) {
        return tree.EnableConstraints(each);
    });
}

KeyConstraintTree& ConstraintForest::TreeOf(std::int64_t key) {
    std::unique_ptr<KeyConstraintTree>& tree = trees.FindOrMake(key);
    if (tree == nullptr)
        tree = std::make_unique<KeyConstraintTree>(key);
    return *tree;
}

// Applies to the pair's tree (every tree for key -1) and then to each pair that this names, until no new one
// comes.
template <typename Apply>
bool ConstraintForest::VisitTrees(const KeyOption& first, Apply apply) {
    bool visited = false;
    KVCache seen;
    std::vector<KeyOption> pending{first};
    while (!pending.empty()) {
        const KeyOption next = pending.back();
        pending.pop_back();
        const auto visit = [&](KeyConstraintTree& tree) {
            visited = true;
            for (const KeyOption& pair : apply(tree, next.option)) {
                if (seen.Lookup(pair) != -1)
                    continue;
                seen.add(pair);
                pending.push_back(pair);
            }
        };
        if (next.key == -1) {
            for (const auto& tree : trees.Values())
                visit(*tree);
        } else if (const auto* found = trees.Find(next.key)) {
            visit(**found);
        }
    }
    return visited;
}

} // namespace torka
