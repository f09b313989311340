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

// The property of a dialog that has the tab of a pane: true when the tab is filled. A dialog gets only one.
inline constexpr const char* panePropertyName = "torkaPane";

// How a dialog looks for a queue that has no pane.
enum class WithoutPane {
    explained,  // the tab says why
    asWithoutUs // no tab, no notice, and every own field of the dialog is there: for the dialogs of others
};

// Attaches the pane to a print dialog of Qt, whoever made it: adds the pane as a tab, follows the chosen
// printer and the dialog's own tabs, hides the choices that the pane decides, and tells why a queue would
// keep the job waiting.
//
// Keeps the choices of the dialog's own tabs in a QPrinter: the dialog's own, or another one when the
// dialog's belongs to a program that must not see a choice before the dialog is accepted.
//
// Refers to dialog, QPrinter and plug-in. REQUIRES: all three outlive the attachment; the application object
// exists.
class PaneAttachment final : public QObject {
    Q_OBJECT

public:
    // The tab is there at once; Begin() fills it.
    PaneAttachment(QPrintDialog& dialog, QPrinter& printer, const std::string& jobName,
                   WithoutPane withoutPane);
    ~PaneAttachment() override;

    // Shows the pane of the chosen queue. Null: the plug-in cannot be loaded, and no queue has a pane.
    void Begin(PDEPlugIn* plugIn);
    PaneTab& Tab() { return *paneTab; }
    // Whether the dialog has the parts that the attachment needs to know.
    static bool Understands(const QPrintDialog& dialog);
    // Opens the options and brings the pane to the front.
    void ShowPane();
    // Makes the dialog large enough for the pane.
    void MakeRoom();
    // The chosen entry, "QUEUE" or "QUEUE/INSTANCE", even when the server has it no more; "" for a file.
    std::string Destination() const;
    // The queue of the destination.
    std::string Queue() const;
    // False when the dialog does not list the queue.
    bool ChooseQueue(const std::string& queue);
    // Counts as if the person had accepted it in the properties. A size that is not valid leaves the present
    // one. The size comes back with each printer that has it, until the person accepts another one.
    void SetPage(const QPageSize& size, QPageLayout::Orientation orientation);
    // True when the present printer has no such size.
    bool LacksWishedSize() const;
    // Asks the pane whether the accepted job may be printed; on true the pane has sent its ticket. On false
    // the pane has shown the reason and stands in front. REQUIRES: the QPrinter holds the choices of the
    // dialog's own tabs.
    bool MayPrint();
    // Page size and orientation as the person last accepted them.
    const QPageLayout& AcceptedLayout() const { return acceptedLayout; }
    // Lets the panel go, before the dialog closes with or without a job.
    void Close();
    // Makes the panel again, for a dialog that is shown a second time.
    void Reopen();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::string PaneQueue(const std::string& destination) const;
    void FollowPrinter();
    void BeginLayout();
    void ShowTab();
    void FollowOwnTabs();
    void TakeProperties();
    void HideWhatThePaneDecides();
    void HideEmptyLocation();
    void HideWhatThePaneDecides(QDialog& properties) const;
    void BringPaneToFront();
    void ShowFieldOfPane();
    void AddQueueNotice();
    void ShowQueueNotice();

    QPrintDialog& dialog;
    QPrinter& printer;
    PaneTab* paneTab; // the dialog's tabs own it
    QComboBox* printers = nullptr;
    std::string followed;       // the destination whose layout this is
    QPageSize wishedSize;       // not valid without a wish
    QPageLayout acceptedLayout; // page size and orientation as the properties were last accepted
    QLabel* queueNotice;        // why a job would wait; hidden for a queue that prints
    QTimer queueTimer;
    WithoutPane withoutPane;
    bool hidesOwnFields = false;
};

} // namespace torka::dialog
