// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/dialog/DialogSettings.h"
#include "platform/PrintDialogExtension.h"

#include <QStackedWidget>
#include <functional>
#include <memory>
#include <string>

class QLabel;

namespace torka::dialog {

// The tab of the print dialog that shows the plug-in's pane for the current queue, or an explanation when the
// queue has no pane.
//
// Owns the panel and its callback object; refers to the dialog's QPrinter and to the plug-in. Takes over the
// choices of the dialog's own tabs before it calls the panel.
class PaneTab final : public QStackedWidget {
    Q_OBJECT

public:
    PaneTab(const QPrinter& printer, std::string jobName, QWidget* parent = nullptr);
    // Panes come from this plug-in from now on. Without one no queue has a pane.
    void usePlugIn(PDEPlugIn* dialogPlugIn) { plugIn = dialogPlugIn; }
    // Nobody sees the tab of a queue without a pane: the server need not be asked for the reason.
    void stayQuiet() { isExplaining = false; }
    ~PaneTab() override;

    // Shows the pane of this queue; "" stands for a destination that is no queue. First saves the values of
    // the panel shown so far into the print settings.
    void setQueue(const std::string& queue);
    // What the pane decides in place of the dialog's own tabs; nothing without a pane.
    const DescribedOptions& decidedByPane() const { return decided; }
    // True when a pane is shown.
    bool hasPanel() const { return panel != nullptr; }
    // Lets the panel write the job's settings and send its ticket. True without a panel. False when the job
    // must not be printed; the panel has then shown the reason. False, too, when the tab died meanwhile.
    bool preparePrint();
    // Releases the panel and its view.
    void dropPanel();
    // The dialog has to call this before it closes, with or without a job.
    void dialogWillClose();
    // Tell the panel about a change in the dialog's own tabs. REQUIRES: the QPrinter holds it already.
    void copiesChanged();
    void dialogSettingsChanged();
    const DialogPrintSettings& settings() const { return *printSettings; }

Q_SIGNALS:
    // The panel has set another number of copies.
    void copiesChosen(int copies);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void TakeOver();
    void Explain(const QString& text);
    void ShowView(QWidget* view);

    PDEPlugIn* plugIn = nullptr;
    const QPrinter& printer;
    std::string jobName;
    std::string queueName;
    DescribedOptions decided;
    std::shared_ptr<DialogPrintSettings> printSettings = std::make_shared<DialogPrintSettings>();
    PDEPanelRef panel;
    bool isExplaining = true;
    QLabel* explanation;
    QWidget* shown = nullptr; // the panel's root view
};

} // namespace torka::dialog
