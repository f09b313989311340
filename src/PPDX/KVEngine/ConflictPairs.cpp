// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConflictPairs.h"

#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <array>
#include <unordered_set>

namespace torka {
namespace {

// A pair of settings in conflict, in an order that does not depend on which is named first.
using ConflictKey = std::array<KeyOption, 2>;

ConflictKey conflictKey(const KeyOption& one, const KeyOption& other) {
    return KeyOptionGreater(one, other) ? ConflictKey{one, other} : ConflictKey{other, one};
}

struct ConflictHash {
    std::size_t operator()(const ConflictKey& conflict) const {
        std::uint64_t hash = 0;
        for (const KeyOption& side : conflict) {
            hash = hashIdentifier(static_cast<std::int64_t>(hash) ^ side.key);
            hash = hashIdentifier(static_cast<std::int64_t>(hash) ^ side.option);
        }
        return hash;
    }
};

} // namespace

std::vector<std::pair<KeyOption, KeyOption>> conflictPairs(const UIConstraints& constraints,
                                                           const KVCache& selections) {
    std::vector<std::pair<KeyOption, KeyOption>> pairs;
    std::unordered_set<ConflictKey, ConflictHash> known;
    ConstraintsEngine engine(&selections, constraints.GetConstraintForest(), constraints.GetKeyForest(),
                             nullptr);
    for (const KeyOption& selected : selections.Pairs()) {
        if (!engine.HasConflict(selected)) {
            continue;
        }
        KVCache change;
        change.add(selected);
        const ConstraintsEngine::Answer answer = engine.Test(change);
        for (const KeyOption& other : answer.conflicts.Pairs()) {
            if (known.insert(conflictKey(selected, other)).second) {
                pairs.emplace_back(selected, other);
            }
        }
    }
    return pairs;
}

} // namespace torka
