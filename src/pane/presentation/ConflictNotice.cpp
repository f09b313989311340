// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/ConflictNotice.h"

#include "PPDX/PPDObjects/Controls/PPDXControl.h"
#include "pane/presentation/FieldTexts.h"

#include <algorithm>

namespace torka {
namespace {

constexpr std::size_t maximumConflicts = 2; // named one by one

ConflictNotice noticeOfConflicts(const PaneTexts& texts) {
    const auto& conflicts = texts.editor.Conflicts();
    std::vector<std::string> lines;
    for (std::size_t i = 0; i < std::min(conflicts.size(), maximumConflicts); ++i) {
        lines.push_back(texts.Say(words::conflict, shownSetting(texts, conflicts[i].first),
                                  shownSetting(texts, conflicts[i].second)));
    }
    if (conflicts.size() > maximumConflicts) {
        lines.push_back(texts.Say(words::conflictsMore, std::to_string(conflicts.size() - maximumConflicts)));
    }
    ConflictNotice notice;
    const PaneResolution& resolution = texts.editor.Resolution();
    if (resolution.solved && !resolution.changes.empty()) {
        notice.resolveTip = texts.Say(words::resolveChanges, shownChanges(texts, resolution.changes));
    } else {
        lines.push_back(texts.Say(words::noResolution));
    }
    notice.text = joined(lines, "\n");
    notice.isConflict = true;
    notice.canUndo = texts.editor.CanUndo();
    return notice;
}

} // namespace

std::optional<ConflictNotice> conflictNotice(const PaneTexts& texts, const PaneChange* change) {
    if (!texts.editor.Conflicts().empty()) {
        return noticeOfConflicts(texts);
    }
    if (change == nullptr || change->kind != PaneChange::Kind::resolution) {
        return std::nullopt;
    }
    std::vector<PaneSetting> changes;
    for (const PPDXControl* control : change->controls) {
        changes.push_back({control->Keyword(), PaneEditor::Value(*control)});
    }
    ConflictNotice notice;
    notice.text = texts.Say(words::changed, shownChanges(texts, changes));
    notice.canUndo = true;
    return notice;
}

} // namespace torka
