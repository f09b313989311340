// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/QuickAccessChoice.h"

#include "pane/data/PDEData.h"
#include "pane/panel/CustomizePaneController.h"
#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/panel/UI_Panel.h"
#include "pane/presentation/FieldTexts.h"

#include <algorithm>
#include <utility>

namespace torka {

QuickAccessChoice::QuickAccessChoice(const PaneTexts& paneTexts, PDEData* paneData)
    : texts(paneTexts)
    , data(paneData)
    , search(paneTexts) {}

// The list of entries keeps at most treeKeywordSize bytes of a keyword, with terminator.
bool QuickAccessChoice::MayStand(const PaneField& field) const {
    return field.keyword.size() < treeKeywordSize &&
           (data == nullptr || data->IsValidBasicPanelControl(field.control));
}

std::vector<QuickAccessChoice::Group> QuickAccessChoice::Groups() const {
    std::vector<Group> groups;
    for (const PanePage& page : texts.editor.Catalog().Pages()) {
        for (const PaneGroup& described : page.groups) {
            Group group;
            std::ranges::copy_if(described.fields, std::back_inserter(group.fields),
                                 [this](const PaneField& field) { return MayStand(field); });
            if (!page.installable && !group.fields.empty()) {
                group.heading = shownPlace(texts, group.fields.front());
                groups.push_back(std::move(group));
            }
        }
    }
    return groups;
}

std::set<std::string> QuickAccessChoice::Offered(std::string_view query,
                                                 const std::vector<std::string>& chosen) {
    std::set<std::string> offered;
    if (query.find_first_not_of(" \t") == std::string_view::npos) {
        texts.editor.Catalog().ForEach([&](const PaneField& field) { offered.insert(field.keyword); });
    }
    for (const PaneMatch& match : search.Matches(query)) {
        offered.insert(match.field->keyword);
    }
    for (const std::string& keyword : chosen) {
        offered.erase(keyword);
    }
    return offered;
}

bool QuickAccessChoice::IsFull(std::size_t chosen) { return chosen >= maximumQuickAccess; }

std::string QuickAccessChoice::CountText(std::size_t chosen) const {
    return texts.Say(words::quickCount, std::to_string(chosen), std::to_string(maximumQuickAccess));
}

std::string QuickAccessChoice::Hint(std::size_t chosen) const {
    return chosen == 0 ? texts.Say(words::quickEmpty) : std::string();
}

bool keepQuickAccess(const PaneEditor& editor, CustomizePaneController& controller, PDEData* data,
                     TorkaFeaturesPDE* panel, const std::vector<std::string>& keywords) {
    PPDTree tree;
    for (const std::string& keyword : keywords) {
        if (const PPDXControl* control = editor.FindControl(keyword)) {
            tree.quickAccess.push_back({nameOf(*control), keyword, 0});
        }
    }
    const bool isKept = data != nullptr && data->SetPPDShortcuts(tree);
    if (panel != nullptr) {
        UI_Panel& model = *panel->GetUI_PanelPtr();
        model.PopulatePPDTreeStructure();
        if (!isKept) {
            UI_Panel::Tree.quickAccess = std::move(tree.quickAccess);
        }
        model.DrawUserPane();
    } else {
        if (!tree.quickAccess.empty()) {
            UI_Panel::Tree.quickAccess = std::move(tree.quickAccess);
        }
        controller.drawControlsInTree(UI_Panel::Tree);
    }
    return isKept;
}

} // namespace torka
