// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"

#include <utility>
#include <vector>

namespace torka {

class UIConstraints;

// The pairs of these selections that a constraint line forbids together, each pair once, in the order of the
// selections.
std::vector<std::pair<KeyOption, KeyOption>> conflictPairs(const UIConstraints& constraints,
                                                           const KVCache& selections);

} // namespace torka
