// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/DelimiterSet.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <algorithm>
#include <array>
#include <unordered_set>

// Pages, scroll panes and roll-downs, the placement of controls in them, and shortcuts.

namespace torka {

namespace {

constexpr DelimiterSet slash("/");

// What lint takes for a flag.
constexpr std::array<std::string_view, 4> pageFlags{"True", "False", "App", "Prop"};
constexpr std::array<std::string_view, 2> groupFlags{"True", "False"};
constexpr std::array<std::string_view, 4> parentFlags{"True", "False", "Scrollpane", "Rolldown"};

template <class Visit>
void forEachFlag(PPDStream& line, Visit visit) {
    while (!line.Remaining().empty()) {
        visit(line.TakeToken(flagEnds, true));
    }
}

bool hasTrueFlag(PPDStream& line) {
    bool found = false;
    forEachFlag(line, [&](std::string_view flag) { found = found || flag == "True"; });
    return found;
}

// Skips blanks, and a colon in place of one, before an element's name.
void skipToName(PPDStream& line) {
    const std::string_view rest = line.Remaining();
    line.Skip(std::min(rest.find_first_not_of(" \t:"), rest.size()));
}

} // namespace

void ZANPPD::ParsePropPage(PPDStream& line) {
    skipToName(line);
    const NamedToken named = TakeNamedToken(line);
    if (named.token.empty()) {
        Report(PPDErr_PropPageParsing, {}, Line());
        return;
    }
    const std::string name(named.token);
    if (properties->Find(name.c_str(), true)) {
        Report(PPDErr_Duplicate, name, Line());
        return;
    }
    bool visible = false;
    bool showInApp = true;
    bool showInPrintProp = true;
    const std::string_view flags = line.Remaining();
    forEachFlag(line, [&](std::string_view flag) {
        visible = visible || flag == "True";
        showInApp = showInApp && flag != "App";
        showInPrintProp = showInPrintProp && flag != "Prop";
    });
    if (lint) {
        lint->CheckFlags(Line(), name, flags, pageFlags, visible);
    }
    if (visible || (parseOptions & kAcceptHidden) != 0) {
        properties->Add(
            new PPDXProperty(name.c_str(), LocalName(named, Line()), visible, showInApp, showInPrintProp));
    }
}

void ZANPPD::ParseGroupName(PPDStream& line, PPDErr missingName) {
    skipToName(line);
    const NamedToken named = TakeNamedToken(line, false);
    if (named.token.empty()) {
        Report(missingName, {}, Line());
        return;
    }
    GroupName record;
    record.name = named.token;
    if (groups->Find(record.name.c_str(), true)) {
        Report(PPDErr_Duplicate, record.name, Line());
        return;
    }
    // A group's name has always ended with a blank; code that compares names relies on it.
    const std::string text = std::string(named.hasName ? named.name : named.token) + ' ';
    record.localName = Localized(text, record.name, Line());
    const std::string_view flags = line.Remaining();
    record.visible = hasTrueFlag(line);
    if (lint) {
        lint->CheckFlags(Line(), record.name, flags, groupFlags, record.visible);
    }
    if (record.visible || (parseOptions & kAcceptHidden) != 0) {
        if (lint) {
            lint->DeclaredGroup(record, Line());
        }
        groupNames.try_emplace(record.name, record);
    }
}

void ZANPPD::ParseParent(PPDStream& line) {
    skipToName(line);
    const std::string childName(line.TakeToken(slash, true));
    const std::string parentName(line.TakeToken(colonEnds, true));
    if (childName.empty() || parentName.empty()) {
        Report(PPDErr_ParentParsing, childName.empty() ? parentName : childName, Line());
        return;
    }
    enum class Kind { none, scrollPane, rollDown };
    Kind kind = Kind::none;
    bool visible = false;
    const std::string_view flags = line.Remaining();
    forEachFlag(line, [&](std::string_view flag) {
        visible = visible || flag == "True";
        kind = flag == "Scrollpane" ? Kind::scrollPane : flag == "Rolldown" ? Kind::rollDown : kind;
    });
    if (lint) {
        lint->CheckFlags(Line(), childName, flags, parentFlags, visible);
    }
    if (!visible && (parseOptions & kAcceptHidden) == 0) {
        return;
    }
    const auto child = groupNames.find(childName);
    if (child == groupNames.end() || kind == Kind::none) {
        if (lint && child == groupNames.end()) {
            lint->ParentWithoutGroup(childName, Line());
        } else if (lint) {
            lint->ParentWithoutKind(childName, Line());
        }
        return;
    }
    if (lint) {
        lint->PlacedGroup(childName);
        if (groups->Find(childName.c_str(), true) != nullptr) {
            lint->Note(PPDLintKind::groupPlacedTwice, Line(), childName);
        }
    }
    if (kind == Kind::scrollPane) {
        PlaceScrollPane(child->second, parentName, visible && child->second.visible);
    } else {
        PlaceRollDown(child->second, parentName, visible && child->second.visible);
    }
}

void ZANPPD::PlaceScrollPane(const GroupName& child, const std::string& parentName, bool visible) {
    PPDXProperty* page = properties->Find(parentName.c_str(), true);
    if (!page) {
        Report(PPDErr_ParentParsingNoParent, parentName, Line());
        return;
    }
    auto pane = std::make_unique<PPDXScrollPane>(child.name.c_str(), child.localName, visible);
    if (page->GetScrollDown() != nullptr) {
        Note(PPDLintKind::secondScrollPane, Line(), parentName, child.name);
    }
    pane->SetParent(page);
    SetPropertyScrollDown(page, pane.get());
    groups->Add(pane.release());
}

void ZANPPD::PlaceRollDown(const GroupName& child, const std::string& parentName, bool visible) {
    PPDXGroup* parent = groups->Find(parentName.c_str(), true);
    auto* pane = dynamic_cast<PPDXScrollPane*>(parent);
    if (!pane) {
        Report(PPDErr_ParentParsingNoParent, parentName, Line());
        return;
    }
    auto rollDown = std::make_unique<PPDXRollDown>(child.name.c_str(), child.localName, visible);
    rollDown->SetParent(pane);
    pane->RollDowns().Add(rollDown.get());
    groups->Add(rollDown.release());
}

// Every group keeps its parent outside a parse; this adds the children to their parents again.
void ZANPPD::ResolveHeirarchy() {
    std::unordered_set<const PPDXGroup*> known;
    groups->ForEach([&](PPDXGroup* group) {
        if (auto* pane = dynamic_cast<PPDXScrollPane*>(group)) {
            pane->RollDowns().ForEach([&](PPDXGroup* rollDown) { known.insert(rollDown); });
        }
    });
    groups->ForEach([&](PPDXGroup* group) {
        if (auto* page = dynamic_cast<PPDXProperty*>(group->GetParent())) {
            SetPropertyScrollDown(page, dynamic_cast<PPDXScrollPane*>(group));
        } else if (auto* pane = dynamic_cast<PPDXScrollPane*>(group->GetParent());
                   pane && !known.contains(group)) {
            pane->RollDowns().Add(group);
        }
    });
}

void ZANPPD::CollectOrphanGroups() {
    orphanGroups.clear();
    groups->ForEach([this](PPDXGroup* group) {
        if (group->IsOrphan()) {
            orphanGroups.push_back(group);
        }
    });
}

void ZANPPD::OpenInstallableOptions(const NamedToken& group) {
    inInstallableOptions = true;
    if (!installableOptions) {
        auto rollDown =
            std::make_unique<PPDXRollDown>("QVPPInstallableOptions", LocalName(group, Line()), true);
        installableOptions = rollDown.get();
        groups->Add(rollDown.release());
    }
}

void ZANPPD::ParseShortcut(PPDStream& line) {
    const std::string keyword(TakeWord(line));
    if (keyword.empty() || !PPDXControl::ValidKeyword(keyword.c_str())) {
        Report(PPDErr_BadShortcut, keyword, Line());
        return;
    }
    collectedShortcuts.push_back({keyword, Line()});
}

void ZANPPD::ResolveShortcuts() {
    for (const CollectedShortcut& shortcut : collectedShortcuts) {
        CNTL_TYPE type{};
        if (PPDXControl* control = controls->FindDisplayed(shortcut.keyword.c_str(), type, true)) {
            shortcuts->Add(control);
            if (lint) {
                lint->CheckShortcut(shortcut.line, *control);
            }
        } else {
            Report(PPDErr_BadShortcut, shortcut.keyword, shortcut.line);
        }
    }
}

// The installable options take the controls of their section that have no group.
ZANPPD::Placement ZANPPD::PlacementFor(PPDXGroup*& group, bool visible) const {
    if (!group && inInstallableOptions) {
        group = installableOptions;
    }
    if (!group) {
        return (parseOptions & kAcceptOrphans) != 0 ? Placement::asOrphan : Placement::noParent;
    }
    if (IsRollDown(group)) {
        return Placement::inRollDown;
    }
    return visible ? Placement::invalidParent : Placement::inControlsOnly;
}

void ZANPPD::SetupControl(PPDXGroup* group, std::unique_ptr<PPDXControl> control, bool visible) {
    if (!control) {
        return;
    }
    const char* keyword = control->Keyword() ? control->Keyword() : "";
    switch (PlacementFor(group, visible)) {
    case Placement::inRollDown:
        control->SetParent(group);
        static_cast<PPDXRollDown*>(group)->Controls().Add(control.get());
        controls->Add(control.release());
        break;
    case Placement::asOrphan:
    case Placement::inControlsOnly:
        controls->Add(control.release());
        break;
    case Placement::noParent:
        Report(PPDErr_NoParent, keyword, Line());
        break;
    case Placement::invalidParent:
        Report(PPDErr_InvalidParent, keyword, Line());
        break;
    }
}

} // namespace torka
