// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"

#include <functional>
#include <optional>
#include <vector>

namespace torka {

class UIConstraints;

// What a resolution may change, and which side of a conflict it tries to keep.
struct ResolutionRules {
    std::function<bool(std::int64_t key)> mayChange;
    // Whether the first of two settings in conflict is the one to keep, when both may change.
    std::function<bool(const KeyOption& first, const KeyOption& second)> prefersFirst;
};

// Returns the new options that end all conflicts of the present selections, none needless; nothing when none
// are found. `wanted` is a change to make: it is among the answer, and only the conflicts that it brings end.
// Null means none. Stops after a search of less than a second. Changes nothing.
std::optional<std::vector<KeyOption>> findResolution(const UIConstraints& constraints,
                                                     const ResolutionRules& rules,
                                                     const KeyOption* wanted = nullptr);

} // namespace torka
