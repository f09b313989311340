// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/FieldSearch.h"
#include "pane/presentation/PaneTexts.h"

#include <cstddef>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace torka {

class CustomizePaneController;
class PDEData;
class TorkaFeaturesPDE;

// The settings that a person can put into the quick-access area. Refers to its arguments, which must outlive
// it; `data` may be null.
class QuickAccessChoice {
public:
    QuickAccessChoice(const PaneTexts& texts, PDEData* data);

    // The settings of the pages. Installed options are left out, and settings that the area cannot show.
    struct Group {
        std::string heading;
        std::vector<PaneField> fields;
    };
    std::vector<Group> Groups() const;
    // The keywords that are not chosen yet and that match the query. A blank query matches all.
    std::set<std::string> Offered(std::string_view query, const std::vector<std::string>& chosen);
    static bool IsFull(std::size_t chosen);
    std::string CountText(std::size_t chosen) const; // "3 of 99"
    std::string Hint(std::size_t chosen) const;      // "" for none

private:
    bool MayStand(const PaneField& field) const;

    const PaneTexts& texts;
    PDEData* data;
    FieldSearch search;
};

// Stores the entries and draws the pane with them. Returns false when they could not be stored; they are then
// shown until the dialog closes. May wait for the spooler and run the event loop. `data` and `panel` may be
// null.
bool keepQuickAccess(const PaneEditor& editor, CustomizePaneController& controller, PDEData* data,
                     TorkaFeaturesPDE* panel, const std::vector<std::string>& keywords);

} // namespace torka
