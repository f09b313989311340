#pragma once

#include "apps/print-dialog/PaneTab.h"

#include <QPrintDialog>
#include <QPrinter>
#include <string>

class QComboBox;

namespace torka::dialog {

// The toolkit's print dialog with the pane as one of its tabs.
//
// Follows the person's change of the printer, and asks the pane before it lets a job go. Owns neither printer
// nor plug-in; both outlive it.
class PrintDialog final : public QPrintDialog {
    Q_OBJECT

public:
    PrintDialog(QPrinter& printer, PDEPlugIn& plugIn, const std::string& jobName, QWidget* parent = nullptr);
    ~PrintDialog() override;

    PaneTab& tab() { return *paneTab; }
    // Opens the options and brings the pane to the front.
    void showPane();
    // The chosen queue, "" when the destination is none.
    std::string queue() const;
    // False when the print server has no such queue.
    bool chooseQueue(const std::string& queue);

    void done(int result) override;

private:
    void FollowPrinter();
    void FollowOwnTabs();
    void BringPaneToFront();
    void ShowFieldOfPane();

    PaneTab* paneTab; // the dialog's tabs own it
    QComboBox* printers = nullptr;
    bool isClosing = false;
};

} // namespace torka::dialog
