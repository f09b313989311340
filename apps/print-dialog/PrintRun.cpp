// SPDX-License-Identifier: Apache-2.0
#include "apps/print-dialog/PrintRun.h"

#include "apps/common/OutsideText.h"
#include "apps/print-dialog/JobProgress.h"
#include "output/BundleIdentifier.h"
#include "output/LeftOutSetting.h"
#include "platform/Spooler.h"

#include <QMessageBox>
#include <cstdio>

namespace torka::dialog {

int submitDocument(const Document& document, PrintDialog& dialog, QString& error) {
    const std::string queue = dialog.queue();
    if (queue.empty()) {
        error = QObject::tr("The destination is no print queue.");
        return 0;
    }
    JobOptions options = standardJobOptions(*dialog.printer(), dialog.tab().decidedByPane());
    if (dialog.tab().hasPanel()) {
        const CFTypeRef ticket = dialog.tab().settings().Value(cfString(ticketPathSetting));
        if (const auto path = cfCast<CFString>(ticket)) {
            options.emplace_back(ticketPathSetting, utf8Text(path));
        }
        for (auto& choice : systemChoices(dialog.tab().settings().Value(cfString(systemChoicesSetting)))) {
            options.push_back(std::move(choice));
        }
    }
    const auto job = submitFile(queue, document.path.toStdString(), document.name.toStdString(), options);
    if (!job) {
        error = QObject::tr("The print server does not take the job: %1")
                    .arg(QString::fromStdString(job.Why().Line()));
        return 0;
    }
    return *job;
}

int runDialog(const Document& document, PrintDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted) {
        return 3;
    }
    QString error;
    const int job = submitDocument(document, dialog, error);
    if (job == 0) {
        std::fprintf(stderr, "%s\n", apps::printable(error.toStdString()).c_str());
        QMessageBox box(QMessageBox::Critical, QObject::tr("Print"), QString(), QMessageBox::Ok);
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
