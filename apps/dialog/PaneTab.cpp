// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/PaneTab.h"

#include "apps/dialog/Said.h"
#include "platform/qt/QtView.h"

#include <QHideEvent>
#include <QLabel>
#include <QPointer>
#include <QShowEvent>
#include <algorithm>
#include <cstdio>
#include <utility>

namespace torka::dialog {

PaneTab::PaneTab(const QPrinter& qtPrinter, std::string documentName, QWidget* parent)
    : QStackedWidget(parent)
    , printer(qtPrinter)
    , jobName(std::move(documentName))
    , explanation(new QLabel(this)) {
    explanation->setAlignment(Qt::AlignCenter);
    explanation->setWordWrap(true);
    explanation->setTextFormat(Qt::PlainText);
    explanation->setMargin(24);
    addWidget(explanation);
    setWindowTitle(tr("Printer Features"));
    printSettings->whenCopiesChange = [this](int copies) { Q_EMIT copiesChosen(copies); };
    Explain(tr("Choose a printer."));
}

PaneTab::~PaneTab() {
    dropPanel();
    printSettings->whenCopiesChange = nullptr;
}

void PaneTab::setQueue(const std::string& queue) {
    if (panel && queue == queueName) {
        return;
    }
    if (panel) {
        panel->saveValuesAndReturnError(nullptr);
    }
    queueName = queue;
    if (queue.empty()) {
        dropPanel();
        decided = {};
        Explain(tr("This destination is no print queue. It has no printer features."));
        return;
    }
    const auto callback = std::make_shared<DialogCallback>(printer, printSettings, queue);
    platform::PMPrinter current = callback->PMPrinter();
    CFURLRef description;
    const bool hasDescription =
        PMPrinterCopyDescriptionURL(current, cfString("PMPPDDescriptionType"), description) == noErr;
    decided = DescribedOptions::Of(CFURLCopyFileSystemPath(description));
    TakeOver();
    // Makes the new panel while the old one still exists: the new one can then see that it replaces another.
    auto panels =
        plugIn == nullptr ? std::nullopt : plugIn->PDEPanelsForType(cfString(printDialogPanelType), callback);
    dropPanel();
    if (!panels || panels->empty()) {
        decided = {};
        const QString name = QString::fromStdString(queue);
        // A queue without a description may have gone, or its server.
        const std::string problem =
            hasDescription || !isExplaining ? std::string() : platform::queueProblem(queue);
        Explain(!problem.empty()
                    ? tr("The printer \u201c%1\u201d cannot be reached: %2").arg(name, saidMessage(problem))
                : hasDescription
                    ? tr("The printer \u201c%1\u201d is not one that these features support.").arg(name)
                    : tr("The printer \u201c%1\u201d has no description on the print server.").arg(name));
        return;
    }
    panel = std::move(panels->front());
    if (const CFStringRef name = panel->panelName(); name && !utf8Text(name).empty()) {
        setWindowTitle(QString::fromStdString(utf8Text(name)));
    }
    QWidget* view = widgetOf(panel->panelView());
    if (view == nullptr) {
        dropPanel();
        decided = {};
        Explain(
            tr("The printer features cannot be shown: the plug-in's interface file is missing or damaged."));
        return;
    }
    ShowView(view);
    if (isVisible()) {
        panel->willShow();
    }
}

void PaneTab::Explain(const QString& text) {
    explanation->setText(text);
    setCurrentWidget(explanation);
}

void PaneTab::ShowView(QWidget* view) {
    shown = view;
    // Qt's dialog names the model beside the printer.
    for (const char* name : {"printerNameStaticText", "printerName"}) {
        if (auto* row = view->findChild<QWidget*>(QLatin1String(name))) {
            row->hide();
        }
    }
    addWidget(view);
    setCurrentWidget(view);
}

void PaneTab::dropPanel() {
    if (shown != nullptr) {
        removeWidget(shown);
        shown->setParent(nullptr); // the panel's view owns it
        shown = nullptr;
    }
    panel.reset();
}

void PaneTab::TakeOver() { takeOverDialogSettings(printer, decided, jobName, *printSettings); }

bool PaneTab::preparePrint() {
    if (!panel) {
        return true;
    }
    TakeOver();
    // The program may delete its dialog while the panel asks the person.
    const QPointer<PaneTab> alive(this);
    const PDEPanelRef asked = panel;
    const std::string queue = queueName;
    std::string error;
    if (!asked->saveValuesAndReturnError(&error)) {
        std::fprintf(stderr, "The settings of %s cannot be saved: %s\n", queue.c_str(), error.c_str());
        return false;
    }
    return alive && asked->shouldPrint() && alive;
}

void PaneTab::dialogWillClose() {
    if (panel) {
        TakeOver();
        panel->printWindowWillClose();
    }
}

void PaneTab::copiesChanged() {
    printSettings->TakeCopies(printer.copyCount());
    if (panel) {
        panel->printInfoDidChange();
    }
}

void PaneTab::dialogSettingsChanged() {
    TakeOver();
    if (panel) {
        panel->printInfoDidChange();
        panel->willShow();
    }
}

void PaneTab::showEvent(QShowEvent* event) {
    QStackedWidget::showEvent(event);
    if (panel && !event->spontaneous()) {
        panel->willShow();
    }
}

void PaneTab::hideEvent(QHideEvent* event) {
    if (panel && !event->spontaneous()) {
        panel->shouldHide();
    }
    QStackedWidget::hideEvent(event);
}

} // namespace torka::dialog
