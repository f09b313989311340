// SPDX-License-Identifier: Apache-2.0
#include "apps/print-dialog/PrintRun.h"

#include "apps/common/OutsideText.h"
#include "apps/dialog/JobProgress.h"
#include "apps/dialog/Submission.h"
#include "platform/Spooler.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <cstdio>

namespace torka::dialog {

int runDialog(const Document& document, PrintDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted) {
        return 3;
    }
    QString error;
    const int job = submitDocument(document, dialog, error);
    if (job == 0) {
        std::fprintf(stderr, "%s\n", apps::printable(error.toStdString()).c_str());
        QMessageBox box(QMessageBox::Critical, QCoreApplication::translate("torka", "Print"), QString(),
                        QMessageBox::Ok);
        box.setTextFormat(Qt::PlainText); // before the text, which may look like markup
        box.setText(error);
        box.exec();
        return 2;
    }
    JobProgress progress(dialog.queue(), job, document.name);
    progress.exec();
    std::printf("%s\n", apps::printable(progress.outcome().toStdString()).c_str());
    if (progress.status().state == jobStateCompleted || progress.isLeftToPrint()) {
        return 0;
    }
    std::fprintf(stderr, "%s\n", apps::printable(progress.status().message).c_str());
    return 1;
}

} // namespace torka::dialog
