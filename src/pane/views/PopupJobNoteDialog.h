#pragma once

#include "pane/panel/PaneInterface.h"
#include "pane/views/PaneContext.h"

#include <QPointer>

#include <set>
#include <string>

class QWidget;

namespace torka {

// Asks for the popup job notes before a job is printed, in a modal dialog in front of the print dialog, and
// takes the person's preferences for it into the globals of PanelState.h.
//
// A note is changed while its text is typed; Cancel brings the texts back that were there before. Fields that
// break a rule are named when the person prints; the person may print all the same.
class PopupJobNoteDialog final : public PopupJobNoteView {
public:
    // `paneRoot` may be null or go before this.
    PopupJobNoteDialog(PaneContext& paneContext, QWidget* paneRoot);
    void observeControlTextDidChange(std::string_view outlet) override;
    bool handlePopupJobnoteUI() override;

private:
    PaneContext& context;
    QPointer<QWidget> root;
    std::set<std::string, std::less<>> observed;
};

} // namespace torka
