// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "pane/data/ControlTables.h"
#include "pane/data/CutText.h"
#include "pane/data/PDEData.h"
#include "pane/data/SpecialControls.h"
#include "pane/panel/UI_Panel.h"
#include "platform/Log.h"

#include <algorithm>
#include <unordered_map>

// The tree of controls that the pane shows, the reset to the defaults, and the job notes of the colour
// controls.

namespace torka {

namespace {

constexpr const char* installableOptionsGroup = "QVPPInstallableOptions";
constexpr std::int64_t colourNoteLength = 1024; // characters

std::string treeKeyword(const PPDXElement& element) {
    return cutText(element.Keyword() ? element.Keyword() : "", treeKeywordSize);
}

// Logs the fault once for each description, however many resets there are.
void reportMissingControl(ZANPPD& model, const char* keyword) {
    PPDXErrors& errors = *model.Errors();
    for (const PPDXErrorObj* error = errors.First(); error; error = errors.Next()) {
        if (error->Code() == PPDErr_NoControls && std::string_view(error->Keyword()) == keyword) {
            return;
        }
    }
    errors.Add(std::make_unique<PPDXErrorObj>(PPDErr_NoControls, true, keyword, 0));
    myNSLogC("The description has a job note %s and no control of that name. Correct the description.",
             keyword);
}

} // namespace

void UI_Panel::PopulatePPDTreeStructure() {
    Tree.groups.clear();
    Tree.quickAccess.clear();
    for (const PPDXControl* control = model->GetShortcuts()->First(); control;
         control = model->GetShortcuts()->Next()) {
        const char* keyword = control->Keyword();
        if (!mPDEData->IsValidBasicPanelControl(control) || !keyword || mPDEData->dmtHides(keyword)) {
            continue;
        }
        if (Tree.quickAccess.size() >= maximumQuickAccess) {
            myNSLogC("The quick-access area holds %zu entries and takes no more.", maximumQuickAccess);
            break;
        }
        Tree.quickAccess.push_back({utf8Text(control->CFStringUserName()), treeKeyword(*control), 0});
    }
    mPDEData->GetPPDShortcuts(Tree);
    AddGroups();
    AddControls();
    // The positions of the quick-access entries also count the groups that are removed here.
    std::erase_if(Tree.groups, [](const PPDTreeGroup& group) { return group.controls.empty(); });
}

// Skips the first group: it is the pane of the page and holds the other groups.
void UI_Panel::AddGroups() {
    PPDXGroups& groups = *model->GetGroups();
    groups.First();
    while (const PPDXGroup* group = groups.Next()) {
        if (!group->Keyword() || *group == installableOptionsGroup || *group == "QVScrollPane") {
            continue;
        }
        if (Tree.groups.size() >= maximumTreeGroups) {
            myNSLogC("The pane shows %zu groups and no more.", maximumTreeGroups);
            break;
        }
        Tree.groups.push_back({utf8Text(group->CFStringUserName()), treeKeyword(*group), {}});
    }
}

// Skips the first control, as AddGroups skips the first group.
void UI_Panel::AddControls() {
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t i = 0; i < Tree.groups.size(); ++i) {
        places.try_emplace(Tree.groups[i].keyword, i);
    }
    PPDXControls& controls = *model->GetControls();
    CNTL_TYPE type{};
    controls.First(type);
    while (const PPDXControl* control = controls.Next(type)) {
        const bool isShownKind =
            type == CNTL_TYPE::jobNote || type == CNTL_TYPE::boolean || type == CNTL_TYPE::popup;
        if (!isShownKind || !control->GetParent() || !mPDEData->IsValidBasicPanelControl(control)) {
            continue;
        }
        const auto place = places.find(treeKeyword(*control->GetParent()));
        if (place == places.end()) {
            continue;
        }
        std::vector<PPDTreeControl>& shown = Tree.groups[place->second].controls;
        if (shown.size() >= maximumTreeControls) {
            myNSLogC("The group %s shows %zu controls and no more.", place->first.data(),
                     maximumTreeControls);
            continue;
        }
        const std::string keyword = treeKeyword(*control);
        if (PPDTreeQuickAccess* entry = GetShortcutFromKeyword(keyword)) {
            entry->position = static_cast<std::int32_t>(100 * (place->second + 1) + shown.size());
        }
        shown.push_back({utf8Text(control->CFStringUserName()), keyword});
    }
}

PPDTreeQuickAccess* GetShortcutFromKeyword(std::string_view keyword) {
    const auto entry = std::ranges::find(UI_Panel::Tree.quickAccess, keyword, &PPDTreeQuickAccess::keyword);
    return entry == UI_Panel::Tree.quickAccess.end() ? nullptr : &*entry;
}

void UI_Panel::ResetControlsToDefault() {
    PPDXControls& controls = *model->GetControls();
    std::array<const PPDXControl*, dynamicColourKeywords.size()> keptNotes{};
    for (std::size_t i = 0; i < dynamicColourKeywords.size(); ++i) {
        PPDXJobNote* note = controls.FindJobNote(dynamicColourKeywords[i], true);
        PPDXControl* control = settingControl(controls, dynamicColourKeywords[i]);
        if (note && !control) {
            break;
        }
        if (note) {
            control->ResetToDefaultValue();
            note->SetUTF8Notes(control->CopyCurrentControlValueString());
            keptNotes[i] = note;
        }
    }
    // A defect of the description ends neither the host nor the reset.
    if (controls.FindJobNote(controlBarKeyword, true) && !settingControl(controls, controlBarKeyword)) {
        reportMissingControl(*model, controlBarKeyword);
    }
    resetJPServerpresetKeys();
    controls.ForEach([&](PPDXControl* control) {
        const PPDXElement* group = control->GetParent();
        const bool keepsValue = !group || *group == installableOptionsGroup || *control == "*PageSize" ||
                                std::ranges::find(keptNotes, control) != keptNotes.end();
        if (!keepsValue) {
            control->ResetToDefaultValue();
        }
    });
    mPDEData->Watermarks().Select(WatermarkList::noSelection);
    for (SettingList* list : {&mPDEData->MixedMediaList(), &mPDEData->PadCoverList(),
                              &mPDEData->CoverPageList(), &mPDEData->SlipSheetList()}) {
        list->Clear();
    }
    mPDEData->ResetAccountPairs();
}

void UI_Panel::makeJobNotesForSpecialControls() {
    if (!mPDEData->isBIDIEnabled()) {
        return;
    }
    PPDXControls& controls = *model->GetControls();
    const auto keep = [&](const char* keyword) {
        PPDXControl* control = settingControl(controls, keyword);
        if (!control) {
            return;
        }
        if (CFStringGetLength(control->CopyCurrentControlValueString()) == 0) {
            control->ResetToDefaultValue();
        }
        if (!controls.FindJobNote(keyword, true)) {
            ControlDefinition definition;
            definition.keyword = keyword;
            definition.localName = control->CFStringUserName();
            definition.visible = false;
            const CString empty("");
            model->SetupControl(
                model->GetGroups()->Find("FPQVNotes", true),
                std::make_unique<PPDXJobNote>(definition, &empty, colourNoteLength, jobNoteUTF8, 0), false);
        }
        PPDXJobNote* note = controls.FindJobNote(keyword, true);
        if (note) {
            note->SetUTF8Notes(control->CopyCurrentControlValueString());
        }
    };
    std::ranges::for_each(dynamicColourKeywords, keep);
    keep(controlBarKeyword);
}

} // namespace torka
