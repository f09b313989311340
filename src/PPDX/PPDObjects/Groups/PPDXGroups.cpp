// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Groups/PPDXGroups.h"

#include "PPDX/PPDObjects/Groups/PPDXRollDown.h"
#include "PPDX/PPDObjects/Groups/PPDXScrollPane.h"
#include "PPDX/PPDObjects/StoredRecord.h"

#include <memory>
#include <vector>

namespace torka {

namespace {

constexpr const char* groupRecord = "Group";
constexpr const char* groupCount = "Groups.count";

enum StoredKind { kindPlain = 0, kindScrollPane = 1, kindRollDown = 2 };

bool isShown(const PPDXGroup* group) { return group->OkayToDisplay(gDisplayOptions); }

std::unique_ptr<PPDXGroup> makeStored(Settings& settings, int index) {
    const CString prefix(groupRecord);
    switch (StoredRecord(settings, groupRecord, index).Index("kind")) {
    case kindScrollPane:
        return std::make_unique<PPDXScrollPane>(settings, index, &prefix);
    case kindRollDown:
        return std::make_unique<PPDXRollDown>(settings, index, &prefix);
    default:
        return std::make_unique<PPDXGroup>(settings, index, &prefix);
    }
}

} // namespace

PPDXGroup::PPDXGroup(const char* groupKeyword, CFStringRef name, bool isVisible)
    : PPDXElement(groupKeyword, std::move(name), isVisible) {}

PPDXGroup::PPDXGroup(Settings& settings, int index, const CString* prefix)
    : PPDXElement(settings, index, prefix) {}

PPDXGroup::~PPDXGroup() = default;

void PPDXGroup::Save(Settings& settings, int index) const {
    SaveElement(settings, index, groupRecord);
    StoredRecord(settings, groupRecord, index)
        .SetInteger("kind", IsScrollPane(this) ? kindScrollPane
                            : IsRollDown(this) ? kindRollDown
                                               : kindPlain);
}

PPDXRollDown::~PPDXRollDown() = default;

PPDXScrollPane::~PPDXScrollPane() = default;

PPDXGroups::PPDXGroups(Ownership newOwnership)
    : ownership(newOwnership) {}

PPDXGroups::PPDXGroups(Settings& settings)
    : ownership(Ownership::owns) {
    const std::int64_t count = settings.GetInteger(groupCount).value_or(0);
    std::vector<PPDXGroup*> made;
    for (int index = 0; index < count && StoredRecord(settings, groupRecord, index).Has("kind"); ++index) {
        made.push_back(makeStored(settings, index).release());
        Add(made.back());
    }
    for (std::size_t index = 0; index < made.size(); ++index) {
        const auto parent = StoredRecord(settings, groupRecord, static_cast<int>(index)).Text("parent");
        auto* pane = parent ? dynamic_cast<PPDXScrollPane*>(Find(parent->c_str(), true)) : nullptr;
        if (pane && IsRollDown(made[index])) {
            made[index]->SetParent(pane);
            pane->RollDowns().Add(made[index]);
        }
    }
}

PPDXGroups::~PPDXGroups() {
    if (ownership == Ownership::owns) {
        list.ForEach([](PPDXGroup* group) { const std::unique_ptr<PPDXGroup> owned(group); });
    }
}

void PPDXGroups::Add(PPDXGroup* group) {
    if (group) {
        list.Add(group);
    }
}

PPDXGroup* PPDXGroups::First() { return list.First(isShown); }

PPDXGroup* PPDXGroups::Next() { return list.Next(isShown); }

void PPDXGroups::Save(Settings& settings) const {
    int index = 0;
    ForEach([&](const PPDXGroup* group) { group->Save(settings, index++); });
    settings.SetInteger(groupCount, index);
}

bool IsRollDown(const PPDXGroup* group) { return dynamic_cast<const PPDXRollDown*>(group) != nullptr; }

bool IsScrollPane(const PPDXGroup* group) { return dynamic_cast<const PPDXScrollPane*>(group) != nullptr; }

PPDXGroup* NextGroup(PPDXGroups* groups) { return groups ? groups->Next() : nullptr; }

bool IsGrouPointerListEmpty(const PPDXGroups* groups) { return !groups || groups->Empty(); }

} // namespace torka
