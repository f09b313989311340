#pragma once

#include "apps/print-dialog/DialogSettings.h"
#include "platform/PrintDialogExtension.h"

#include <QStackedWidget>
#include <functional>
#include <memory>
#include <string>

class QLabel;

namespace torka::dialog {

// The tab of the print dialog that shows the plug-in's pane for the queue at hand, or a short page that says
// why there is none.
//
// Owns the panel and its callback object; refers to the dialog's QPrinter and to the plug-in. The person's
// changes in the dialog's own tabs are taken over each time before the panel is called.
class PaneTab final : public QStackedWidget {
    Q_OBJECT

public:
    PaneTab(PDEPlugIn& plugIn, const QPrinter& printer, std::string jobName, QWidget* parent = nullptr);
    ~PaneTab() override;

    // Shows the pane of this queue, "" for a destination that is no queue. What was set on the queue before
    // is brought into the print settings first.
    void setQueue(const std::string& queue);
    // True when a pane is shown.
    bool hasPanel() const { return panel != nullptr; }
    // Lets the panel write the job's settings and send its ticket. False: the job must not be printed, and
    // the panel has said why. Without a panel, true.
    bool preparePrint();
    // The dialog is about to close, with or without a job.
    void dialogWillClose();
    // The person changed something in the dialog's own tabs.
    void copiesChanged(int copies);
    void dialogSettingsChanged();
    const MemoryPrintSettings& settings() const { return *printSettings; }
    PDEPanel* currentPanel() const { return panel.get(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void TakeOver();
    void DropPanel();
    void Explain(const QString& text);
    void ShowView(QWidget* view);

    PDEPlugIn& plugIn;
    const QPrinter& printer;
    std::string jobName;
    std::string queueName;
    std::shared_ptr<MemoryPrintSettings> printSettings = std::make_shared<MemoryPrintSettings>();
    PDEPanelRef panel;
    QLabel* explanation;
    QWidget* shown = nullptr; // the panel's root view
};

} // namespace torka::dialog
