// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/PrintDialog.h"

namespace torka::dialog {

PrintDialog::PrintDialog(QPrinter& qtPrinter, PDEPlugIn& plugIn, const std::string& jobName, QWidget* parent)
    : QPrintDialog(&qtPrinter, parent) {
    // The dialog cannot print to a file, because it sends the document unchanged.
    setOption(QAbstractPrintDialog::PrintToFile, false);
    setOption(QAbstractPrintDialog::PrintPageRange, true);
    setOption(QAbstractPrintDialog::PrintCollateCopies, true);
    // Nobody has counted the document's pages. Qt refuses pages outside both ranges, and both begin empty.
    constexpr int mostPages = 9999;
    setMinMax(1, mostPages);
    setFromTo(1, mostPages);
    pane.emplace(*this, qtPrinter, jobName, WithoutPane::explained);
    pane->Begin(&plugIn);
    setWindowTitle(tr("Print \u2013 %1").arg(QString::fromStdString(jobName)));
}

PrintDialog::~PrintDialog() = default;

void PrintDialog::done(int result) {
    // Qt has written the choices of its own tabs to the QPrinter by now, because the person accepted the
    // dialog.
    if (result == Accepted && !isClosing && !pane->MayPrint()) {
        return;
    }
    if (!isClosing) {
        isClosing = true;
        tab().dialogWillClose();
    }
    QPrintDialog::done(result);
}

} // namespace torka::dialog
