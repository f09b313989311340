// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/PaneAttachment.h"

#include <QPrintDialog>
#include <QPrinter>
#include <optional>
#include <string>

namespace torka::dialog {

// Qt's print dialog with the pane as one of its tabs.
//
// Shows the pane of the chosen printer, and asks the pane before it accepts a job. Owns neither printer nor
// plug-in; both must outlive it.
class PrintDialog final : public QPrintDialog {
    Q_OBJECT

public:
    PrintDialog(QPrinter& printer, PDEPlugIn& plugIn, const std::string& jobName, QWidget* parent = nullptr);
    ~PrintDialog() override;

    PaneTab& tab() { return pane->Tab(); }
    // Opens the options and brings the pane to the front.
    void showPane() { pane->ShowPane(); }
    // The chosen entry, "QUEUE" or "QUEUE/INSTANCE"; "" when the destination is no queue.
    std::string destination() const { return pane->Destination(); }
    std::string queue() const { return pane->Queue(); }
    // False when the dialog has no such entry.
    bool chooseQueue(const std::string& queue) { return pane->ChooseQueue(queue); }
    // See PaneAttachment.
    void setPage(const QPageSize& size, QPageLayout::Orientation orientation) {
        pane->SetPage(size, orientation);
    }

    bool lacksWishedSize() const { return pane->LacksWishedSize(); }

    void done(int result) override;

private:
    std::optional<PaneAttachment> pane; // has a value once the dialog is made
    bool isClosing = false;
};

} // namespace torka::dialog
