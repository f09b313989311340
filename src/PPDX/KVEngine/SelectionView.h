// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/ConstraintRun.h"
#include "PPDX/KVEngine/KVCache.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace torka {

// Shows the selections after a change set is inserted, without copying them. Builds a merged copy only when a
// key repeats in either. Both must outlive the view and stay unchanged. Not thread-safe, not even for
// look-ups.
class SelectionView {
public:
    explicit SelectionView(const KVCache& base, const KVCache* changeSet = nullptr);
    // Shows the selections after the change of one key, which is not negative.
    SelectionView(const KVCache& base, const KeyOption& change);

    // Tells whether the pair is selected.
    bool Contains(const KeyOption& pair) const;
    // Tells whether any pair of the run is selected.
    bool ContainsAnyOf(const ConstraintRun& run) const;

    // Calls visit(pair) for each selected pair of the run, last first. Stops and returns false when visit
    // does.
    template <typename Visit>
    bool ForEachBackwards(const ConstraintRun& run, Visit visit) const {
        for (std::size_t round = 0; round < run.repeat; ++round) {
            bool found = false;
            const auto check = [&](const KeyOption& pair) {
                found = true;
                return visit(pair);
            };
            if (!(run.range != nullptr ? RangeBackwards(run, check) : PairsBackwards(run, check))) {
                return false;
            }
            if (!found) {
                break;
            }
        }
        return true;
    }

private:
    const KeyOption* Selected(std::int64_t key) const;
    const KeyOption* FindSelected(std::int64_t key) const;

    template <typename Visit>
    bool PairsBackwards(const ConstraintRun& run, Visit visit) const {
        for (std::size_t i = run.lines.size(); i-- > 0;) {
            const KeyOption pair = run.lines[i].Constrained();
            if (Contains(pair) && !visit(pair)) {
                return false;
            }
        }
        return true;
    }

    template <typename Visit>
    bool RangeBackwards(const ConstraintRun& run, Visit visit) const {
        if (!merged.has_value()) {
            const KeyOption* selected = Selected(run.key);
            if (selected == nullptr) {
                return true;
            }
            for (std::size_t n = run.range->Occurrences(selected->option); n > 0; --n) {
                if (!visit(*selected)) {
                    return false;
                }
            }
            return true;
        }
        const auto items = run.range->Items();
        for (std::size_t i = items.size(); i-- > 0;) {
            const KeyOption pair{run.key, items[i]};
            if (!run.range->Skips(pair.option) && Contains(pair) && !visit(pair)) {
                return false;
            }
        }
        return true;
    }

    const KVCache& selections;
    const KVCache* changes = nullptr;
    KeyOption single; // the only change, or (-1, -1)
    std::optional<KVCache> merged;

    // The last key asked and its answer: consecutive lines of one option mostly name the same key.
    mutable std::int64_t lastKey = -1;
    mutable const KeyOption* lastSelected = nullptr;
};

} // namespace torka
