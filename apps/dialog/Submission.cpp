// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/Submission.h"

#include "apps/dialog/Said.h"
#include "output/BundleIdentifier.h"
#include "output/LeftOutSetting.h"
#include "platform/Log.h"
#include "platform/Spooler.h"
#include "platform/cups/QueueInstance.h"

#include <QCoreApplication>
#include <algorithm>

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

namespace {

bool isDecided(const DescribedOptions& byPane, const std::string& name) {
    const bool hasPane = !byPane.defaults.empty() || !byPane.numbers.empty() || !byPane.notes.empty();
    return byPane.defaults.contains(name) || byPane.numbers.contains(name) || byPane.notes.contains(name) ||
           (hasPane && (name == "CustomPrintSize" || name.starts_with("torka-"))) ||
           (byPane.sides && name == "sides") || (byPane.pagesPerSheet && name.starts_with("number-up"));
}

// Adds what the chosen instance has and the dialog does not decide. The dialog shows its own choices.
void addInstanceOptions(const std::string& destination, const DescribedOptions& byPane, JobOptions& options) {
    const std::size_t slash = destination.find('/');
    if (slash == std::string::npos) {
        return;
    }
    for (auto& [name, value] :
         platform::instanceOptions(destination.substr(0, slash), destination.substr(slash + 1))) {
        if (isDecided(byPane, name)) {
            myNSLogC("The pane decides %s, not %s with %s", name.c_str(), destination.c_str(), value.c_str());
        } else if (name != "media" && name != "PageSize" && name != "PageRegion" &&
                   std::ranges::find(options, name, &JobOptions::value_type::first) == options.end()) {
            options.emplace_back(name, value);
        }
    }
}

} // namespace

JobOptions jobOptions(PrintDialog& dialog) {
    const PaneTab& tab = dialog.tab();
    JobOptions options = standardJobOptions(*dialog.printer(), tab.decidedByPane(), tab.hasPanel());
    addInstanceOptions(dialog.destination(), tab.hasPanel() ? tab.decidedByPane() : DescribedOptions(),
                       options);
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
                    .arg(saidMessage(job.Why().Line()));
        return 0;
    }
    return *job;
}

int submitDocument(const Document& document, PrintDialog& dialog, QString& error) {
    return submitDocument(document, dialog.queue(), jobOptions(dialog), error);
}

} // namespace torka::dialog
