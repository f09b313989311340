// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/PaneTab.h"

#include <QObject>
#include <QPageLayout>
#include <QTimer>
#include <string>

class QComboBox;
class QDialog;
class QLabel;
class QPrintDialog;
class QPrinter;

namespace torka::dialog {

// Attaches the pane to a print dialog of Qt, whoever made it: adds the pane as a tab, follows the chosen
// printer and the dialog's own tabs, hides the choices that the pane decides, and tells why a queue would
// keep the job waiting.
//
// Refers to the dialog, its QPrinter and the plug-in. REQUIRES: all three outlive the attachment; the
// application object exists.
class PaneAttachment final : public QObject {
    Q_OBJECT

public:
    PaneAttachment(QPrintDialog& dialog, PDEPlugIn& plugIn, const std::string& jobName);
    ~PaneAttachment() override;

    PaneTab& Tab() { return *paneTab; }
    // Opens the options and brings the pane to the front.
    void ShowPane();
    // The chosen queue; "" when the destination is no queue.
    std::string Queue() const;
    // False when the dialog does not list the queue.
    bool ChooseQueue(const std::string& queue);
    // Asks the pane whether the accepted job may be printed; on true the pane has sent its ticket. On false
    // the pane has shown the reason and stands in front. REQUIRES: the QPrinter holds the choices of the
    // dialog's own tabs.
    bool MayPrint();

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

    QPrintDialog& dialog;
    QPrinter& printer;
    PaneTab* paneTab; // the dialog's tabs own it
    QComboBox* printers = nullptr;
    QPageLayout acceptedLayout; // page size and orientation as the properties were last accepted
    QLabel* queueNotice;        // why a job would wait; hidden for a queue that prints
    QTimer queueTimer;
};

} // namespace torka::dialog
