// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/Submission.h"

#include "output/BundleIdentifier.h"
#include "output/LeftOutSetting.h"
#include "platform/Spooler.h"

#include <QCoreApplication>

namespace torka::dialog {

JobOptions ticketOptions(const PaneTab& tab) {
    JobOptions options;
    if (!tab.hasPanel()) {
        return options;
    }
    if (const auto path = cfCast<CFString>(tab.settings().Value(cfString(ticketPathSetting)))) {
        options.emplace_back(ticketPathSetting, utf8Text(path));
    }
    for (auto& choice : systemChoices(tab.settings().Value(cfString(systemChoicesSetting)))) {
        options.push_back(std::move(choice));
    }
    return options;
}

JobOptions jobOptions(PrintDialog& dialog) {
    const PaneTab& tab = dialog.tab();
    JobOptions options = standardJobOptions(*dialog.printer(), tab.decidedByPane(), tab.hasPanel());
    for (auto& option : ticketOptions(tab)) {
        options.push_back(std::move(option));
    }
    return options;
}

int submitDocument(const Document& document, const std::string& queue, const JobOptions& options,
                   QString& error) {
    if (queue.empty()) {
        error = QCoreApplication::translate("torka", "The destination is no print queue.");
        return 0;
    }
    const auto job = submitFile(queue, document.path.toStdString(), document.name.toStdString(), options);
    if (!job) {
        error = QCoreApplication::translate("torka", "The print server does not take the job: %1")
                    .arg(QString::fromStdString(job.Why().Line()));
        return 0;
    }
    return *job;
}

int submitDocument(const Document& document, PrintDialog& dialog, QString& error) {
    return submitDocument(document, dialog.queue(), jobOptions(dialog), error);
}

} // namespace torka::dialog
