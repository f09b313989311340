// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ConflictPairs.h"

#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/UIConstraints.h"

namespace torka {
namespace {

// A pair of settings in conflict, in an order that does not depend on which is named first.
ConflictPair unordered(const ConflictPair& pair) {
    return KeyOptionGreater(pair.first, pair.second) ? pair : ConflictPair{pair.second, pair.first};
}

std::uint64_t hashOf(const ConflictPair& pair) {
    std::uint64_t hash = 0;
    for (const KeyOption& side : {pair.first, pair.second}) {
        const auto both =
            static_cast<std::uint64_t>(side.key) ^ (static_cast<std::uint64_t>(side.option) << 32U);
        hash = hashIdentifier(static_cast<std::int64_t>(hash ^ both)); // identifiers have at most 32 bits
    }
    return hash;
}

} // namespace

bool ConflictPairSet::Insert(const ConflictPair& pair) {
    const std::uint64_t hash = hashOf(pair);
    if (Find(pair, hash) != PositionTable::none) {
        return false;
    }
    if (index.Full()) {
        index.Grow([this](std::uint32_t at) { return hashOf(pairs[at]); });
    }
    index.Add(hash, static_cast<std::uint32_t>(pairs.size()));
    pairs.push_back(pair);
    return true;
}

bool ConflictPairSet::Contains(const ConflictPair& pair) const {
    return Find(pair, hashOf(pair)) != PositionTable::none;
}

std::uint32_t ConflictPairSet::Find(const ConflictPair& pair, std::uint64_t hash) const {
    return index.Find(hash, [&](std::uint32_t at) { return pairs[at] == pair; });
}

bool visitConflictPairs(ConstraintsEngine& engine, const KVCache& selections,
                        const std::function<bool(const ConflictPair&)>& visit) {
    ConflictPairSet known;
    for (const KeyOption& selected : selections.Pairs()) {
        for (const KeyOption& other : engine.ConflictsOf(selected)) {
            const ConflictPair pair{selected, other};
            if (known.Insert(unordered(pair)) && !visit(pair)) {
                return false;
            }
        }
    }
    return true;
}

std::vector<ConflictPair> conflictPairs(const UIConstraints& constraints, const KVCache& selections) {
    std::vector<ConflictPair> pairs;
    ConstraintsEngine engine(&selections, constraints.GetConstraintForest(), constraints.GetKeyForest(),
                             nullptr);
    visitConflictPairs(engine, selections, [&pairs](const ConflictPair& pair) {
        pairs.push_back(pair);
        return true;
    });
    return pairs;
}

} // namespace torka
