// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/PositionTable.h"

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace torka {

class ConstraintsEngine;
class UIConstraints;

using ConflictPair = std::pair<KeyOption, KeyOption>;

// A set of such pairs: two that differ in the order of their sides are different.
class ConflictPairSet {
public:
    // Returns false for a pair that the set holds already.
    bool Insert(const ConflictPair& pair);
    bool Contains(const ConflictPair& pair) const;

private:
    std::uint32_t Find(const ConflictPair& pair, std::uint64_t hash) const;

    std::vector<ConflictPair> pairs;
    PositionTable index;
};

// The pairs of these selections that a constraint line forbids together, each pair once, in the order of the
// selections.
std::vector<ConflictPair> conflictPairs(const UIConstraints& constraints, const KVCache& selections);
// Calls visit for these pairs until it returns false, and returns false then. The engine is one for the
// selections.
bool visitConflictPairs(ConstraintsEngine& engine, const KVCache& selections,
                        const std::function<bool(const ConflictPair&)>& visit);

} // namespace torka
