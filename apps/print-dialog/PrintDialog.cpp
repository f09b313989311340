// SPDX-License-Identifier: Apache-2.0
#include "apps/print-dialog/PrintDialog.h"

#include <QComboBox>
#include <QPrinterInfo>
#include <QPushButton>
#include <QScreen>
#include <QSpinBox>
#include <QTabWidget>

namespace torka::dialog {

PrintDialog::PrintDialog(QPrinter& qtPrinter, PDEPlugIn& plugIn, const std::string& jobName, QWidget* parent)
    : QPrintDialog(&qtPrinter, parent)
    , paneTab(new PaneTab(plugIn, qtPrinter, jobName)) {
    // The dialog cannot print to a file, because it sends the document unchanged.
    setOption(QAbstractPrintDialog::PrintToFile, false);
    setOption(QAbstractPrintDialog::PrintPageRange, true);
    setOption(QAbstractPrintDialog::PrintCollateCopies, true);
    setOptionTabs({paneTab});
    setWindowTitle(tr("Print \u2013 %1").arg(QString::fromStdString(jobName)));
    // QPrintDialog has no signal for a change of printer; its combo box has one.
    printers = findChild<QComboBox*>(QStringLiteral("printers"));
    if (printers != nullptr) {
        connect(printers, &QComboBox::currentIndexChanged, this, &PrintDialog::FollowPrinter);
    }
    FollowOwnTabs();
    FollowPrinter();
}

PrintDialog::~PrintDialog() = default;

std::string PrintDialog::queue() const {
    if (printers == nullptr) {
        return printer()->printerName().toStdString();
    }
    const QString name = printers->currentText();
    return QPrinterInfo::printerInfo(name).isNull() ? std::string() : name.toStdString();
}

bool PrintDialog::chooseQueue(const std::string& name) {
    const int at =
        printers == nullptr ? -1 : printers->findText(QString::fromStdString(name), Qt::MatchExactly);
    if (at >= 0) {
        printers->setCurrentIndex(at);
    }
    return at >= 0;
}

void PrintDialog::FollowPrinter() {
    paneTab->setQueue(queue());
    const QList<QTabWidget*> tabWidgets = findChildren<QTabWidget*>();
    for (QTabWidget* tabs : tabWidgets) {
        if (const int at = tabs->indexOf(paneTab); at >= 0) {
            tabs->setTabText(at, paneTab->windowTitle());
        }
    }
}

void PrintDialog::FollowOwnTabs() {
    if (auto* copies = findChild<QSpinBox*>(QStringLiteral("copies"))) {
        connect(copies, &QSpinBox::valueChanged, paneTab, &PaneTab::copiesChanged);
    }
    // Qt connected its own slot first; that slot runs the properties dialog to its end before this one runs.
    if (auto* properties = findChild<QPushButton*>(QStringLiteral("properties"))) {
        connect(properties, &QPushButton::clicked, paneTab, &PaneTab::dialogSettingsChanged);
    }
}

void PrintDialog::BringPaneToFront() {
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        // "Options >>" opens the tabs. In every language it is the only button with ">>".
        if (button->text().contains(QLatin1String(">>"))) {
            button->click();
            break;
        }
    }
    const QList<QTabWidget*> tabWidgets = findChildren<QTabWidget*>();
    for (QTabWidget* tabs : tabWidgets) {
        if (const int at = tabs->indexOf(paneTab); at >= 0) {
            tabs->setCurrentIndex(at);
        }
    }
}

void PrintDialog::showPane() {
    BringPaneToFront();
    // Qt sizes its dialog for a few radio buttons; the pane needs more space.
    const QFontMetrics metrics = fontMetrics();
    resize(size()
               .expandedTo({metrics.averageCharWidth() * 140, metrics.height() * 54})
               .boundedTo(screen()->availableSize() * 9 / 10));
}

// After the pane has held a job back: it may have gone to the field that the person has to change.
void PrintDialog::ShowFieldOfPane() {
    BringPaneToFront();
    if (QWidget* field = paneTab->focusWidget()) {
        field->setFocus(Qt::OtherFocusReason);
    }
}

void PrintDialog::done(int result) {
    // Qt has written the choices of its own tabs to the QPrinter by now, because the person accepted the
    // dialog.
    if (result == Accepted && !isClosing && !paneTab->preparePrint()) {
        ShowFieldOfPane();
        return;
    }
    if (!isClosing) {
        isClosing = true;
        paneTab->dialogWillClose();
    }
    QPrintDialog::done(result);
}

} // namespace torka::dialog
