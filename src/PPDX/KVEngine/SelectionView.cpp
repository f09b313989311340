// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/SelectionView.h"

namespace torka {

SelectionView::SelectionView(const KVCache& base, const KVCache* changeSet)
    : selections(base)
    , changes(changeSet) {
    if (selections.HasRepeatedKeys() || (changes != nullptr && changes->HasRepeatedKeys())) {
        merged = selections;
        if (changes != nullptr) {
            merged->merge(*changes);
        }
    }
}

SelectionView::SelectionView(const KVCache& base, const KeyOption& change)
    : selections(base)
    , single(change) {
    if (selections.HasRepeatedKeys()) {
        merged = selections;
        merged->Insert(change.key, change.option);
    }
}

bool SelectionView::Contains(const KeyOption& pair) const {
    if (merged.has_value()) {
        return merged->Lookup(pair) != -1;
    }
    const KeyOption* selected = Selected(pair.key);
    return selected != nullptr && selected->option == pair.option;
}

bool SelectionView::ContainsAnyOf(const ConstraintRun& run) const {
    return !ForEachBackwards(run, [](const KeyOption&) { return false; });
}

const KeyOption* SelectionView::Selected(std::int64_t key) const {
    if (key != lastKey || key < 0) {
        lastSelected = FindSelected(key);
        lastKey = key;
    }
    return lastSelected;
}

const KeyOption* SelectionView::FindSelected(std::int64_t key) const {
    if (key == single.key && key >= 0) {
        return &single;
    }
    if (changes != nullptr && key >= 0) {
        if (const KeyOption* changed = changes->FindKey(key)) {
            return changed;
        }
    }
    return selections.FindKey(key);
}

} // namespace torka
