// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/panel/PaneInterface.h"
#include "pane/views/PaneContext.h"

#include <QPointer>

#include <set>
#include <string>

class QWidget;

namespace torka {

// Asks for the popup job notes before a job is printed, in a modal dialog above the print dialog
// (PopupNoteForm).
//
// Typing changes a note at once; Cancel restores the notes. Print names the fields that break a rule, and
// prints at the second press.
class PopupJobNoteDialog final : public PopupJobNoteView {
public:
    // `paneRoot` may be null and may end before this.
    PopupJobNoteDialog(PaneContext& paneContext, QWidget* paneRoot);
    void observeControlTextDidChange(std::string_view outlet) override;
    bool handlePopupJobnoteUI() override;

private:
    PaneContext& context;
    QPointer<QWidget> root;
    std::set<std::string, std::less<>> observed;
};

} // namespace torka
