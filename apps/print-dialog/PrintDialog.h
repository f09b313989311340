// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/print-dialog/PaneTab.h"

#include <QPageLayout>
#include <QPrintDialog>
#include <QPrinter>
#include <QTimer>
#include <string>

class QComboBox;
class QLabel;

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

    PaneTab& tab() { return *paneTab; }
    // Opens the options and brings the pane to the front.
    void showPane();
    // The chosen queue; "" when the destination is no queue.
    std::string queue() const;
    // False when the print server has no such queue.
    bool chooseQueue(const std::string& queue);

    void done(int result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FollowPrinter();
    void FollowOwnTabs();
    void TakeProperties();
    void HideWhatThePaneDecides();
    void HideWhatThePaneDecides(QDialog& properties) const;
    void BringPaneToFront();
    void ShowFieldOfPane();
    void AddQueueNotice();
    void ShowQueueNotice();

    PaneTab* paneTab; // the dialog's tabs own it
    QComboBox* printers = nullptr;
    QPageLayout acceptedLayout; // page size and orientation as the properties were last accepted
    QLabel* queueNotice;        // why a job would wait; hidden for a queue that prints
    QTimer queueTimer;
    bool isClosing = false;
};

} // namespace torka::dialog
