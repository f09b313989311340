// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/ZANWatermark.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// The watermarks of one printer and the selected one. Owns the watermarks. The selection is a position and
// survives a rebuild of the list; a position without a watermark selects none.
class WatermarkList {
public:
    static constexpr int noSelection = -1;

    std::size_t Count() const { return watermarks.size(); }
    // Returns null beyond the end.
    ZANWatermark* At(std::size_t index) const {
        return index < watermarks.size() ? watermarks[index].get() : nullptr;
    }
    void Append(std::unique_ptr<ZANWatermark> watermark) { watermarks.push_back(std::move(watermark)); }
    void Clear() { watermarks.clear(); }
    // Empties the list and keeps the selection.
    std::vector<std::unique_ptr<ZANWatermark>> TakeAll() { return std::exchange(watermarks, {}); }

    int SelectedIndex() const { return selectedIndex; }
    // A negative index selects none.
    void Select(int index) { selectedIndex = index < 0 ? noSelection : index; }
    // Selects the first watermark with that definition, or none.
    void SelectDefinition(std::string_view definition, bool firstPageOnly) {
        selectedIndex = noSelection;
        for (std::size_t i = 0; !definition.empty() && i < watermarks.size(); ++i) {
            if (watermarks[i]->Definition() == definition) {
                selectedIndex = static_cast<int>(i);
                watermarks[i]->SetFirstPageOnly(firstPageOnly ? "True" : "False");
                return;
            }
        }
    }
    // Returns null when none is selected.
    ZANWatermark* Selected() const {
        return selectedIndex < 0 ? nullptr : At(static_cast<std::size_t>(selectedIndex));
    }

private:
    std::vector<std::unique_ptr<ZANWatermark>> watermarks;
    int selectedIndex = noSelection;
};

} // namespace torka
