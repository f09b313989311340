#pragma once

#include "output/ZANWatermark.h"

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace torka {

// The watermarks of one printer, which it owns, and which of them is chosen. The choice is a position and
// stays when the list is rebuilt; a position without a watermark chooses none.
class WatermarkList {
public:
    static constexpr int noSelection = -1;

    std::size_t Count() const { return watermarks.size(); }
    // Null beyond the end.
    ZANWatermark* At(std::size_t index) const {
        return index < watermarks.size() ? watermarks[index].get() : nullptr;
    }
    void Append(std::unique_ptr<ZANWatermark> watermark) { watermarks.push_back(std::move(watermark)); }
    void Clear() { watermarks.clear(); }
    // Leaves the list empty; the choice stays.
    std::vector<std::unique_ptr<ZANWatermark>> TakeAll() { return std::exchange(watermarks, {}); }

    int SelectedIndex() const { return selectedIndex; }
    // Any negative index chooses none.
    void Select(int index) { selectedIndex = index < 0 ? noSelection : index; }
    // Chooses the first one with that definition, and none when there is none.
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
    // Null when none is chosen.
    ZANWatermark* Selected() const {
        return selectedIndex < 0 ? nullptr : At(static_cast<std::size_t>(selectedIndex));
    }

private:
    std::vector<std::unique_ptr<ZANWatermark>> watermarks;
    int selectedIndex = noSelection;
};

} // namespace torka
