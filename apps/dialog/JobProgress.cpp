// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/JobProgress.h"

#include "apps/dialog/QueueNotice.h"
#include "platform/qt/LetterWidth.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace torka::dialog {

namespace {

constexpr int askInterval = 150;    // milliseconds
constexpr int silentQuestions = 20; // after so many without an answer the server counts as gone

constexpr int questionsPerQueueState = 7; // about once a second

QString stateText(int state) {
    switch (state) {
    case jobStatePending:
        return JobProgress::tr("waiting");
    case jobStateHeld:
        return JobProgress::tr("held");
    case jobStateProcessing:
        return JobProgress::tr("printing");
    case jobStateStopped:
        return JobProgress::tr("stopped");
    case jobStateCanceled:
        return JobProgress::tr("cancelled");
    case jobStateAborted:
        return JobProgress::tr("failed");
    case jobStateCompleted:
        return JobProgress::tr("completed");
    default:
        return JobProgress::tr("unknown to the print server");
    }
}

} // namespace

JobProgress::JobProgress(std::string queue, int job, const QString& title, QWidget* parent)
    : QDialog(parent)
    , queueName(std::move(queue))
    , jobNumber(job)
    , text(new QLabel(this))
    , detail(new QLabel(this))
    , bar(new QProgressBar(this))
    , cancelButton(new QPushButton(tr("Cancel &Job"), this))
    , closeButton(new QPushButton(tr("&Close"), this)) {
    setWindowTitle(tr("Printing \u2013 %1").arg(title));
    setMinimumWidth(letterWidth(fontMetrics()) * 60);
    for (QLabel* label : {text, detail}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    detail->setObjectName(QStringLiteral("jobDetail"));
    cancelButton->setObjectName(QStringLiteral("cancelJob"));
    cancelButton->setAutoDefault(false);
    closeButton->setDefault(true);
    closeButton->setToolTip(tr("Closes this window. The job prints on."));
    bar->setAccessibleName(tr("Progress of the job"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(bar);
    layout->addWidget(detail);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cancelButton);
    buttons->addStretch(1);
    buttons->addWidget(closeButton);
    layout->addLayout(buttons);
    connect(cancelButton, &QPushButton::clicked, this, &JobProgress::CancelJob);
    connect(closeButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(&timer, &QTimer::timeout, this, &JobProgress::Ask);
    timer.start(askInterval);
    Show();
}

bool JobProgress::IsGone() const { return failures >= silentQuestions; }

void JobProgress::Ask() {
    const JobStatus status = jobStatus(jobNumber);
    failures = status.state == 0 ? failures + 1 : 0;
    if (status.state != 0 || IsGone()) {
        lastStatus = status;
    }
    if (status.state != 0 && !lastStatus.IsOver() && questions++ % questionsPerQueueState == 0) {
        const CFDictionaryRef state = queueState(queueName);
        queueReason = queueNotice(queueName, state);
        jobsInQueue = queuedJobs(state);
    }
    if (lastStatus.IsOver() || IsGone()) {
        timer.stop();
    }
    Show();
    // A completed job needs no further message.
    if (lastStatus.state == jobStateCompleted) {
        accept();
    }
}

QString JobProgress::WhyItWaits() const {
    if (lastStatus.IsOver() || IsGone()) {
        return {};
    }
    if (!queueReason.isEmpty()) {
        return queueReason;
    }
    if (lastStatus.state == jobStateHeld) {
        return tr("The job is held until its time comes or somebody releases it.");
    }
    return lastStatus.state == jobStatePending && jobsInQueue > 1
               ? tr("Jobs in this queue: %1").arg(jobsInQueue)
               : QString();
}

void JobProgress::Show() {
    const bool isOver = lastStatus.IsOver() || IsGone();
    text->setText(outcome());
    QStringList lines{cancelReason, WhyItWaits(), QString::fromStdString(lastStatus.message)};
    lines.removeAll(QString());
    detail->setText(lines.join(QLatin1Char('\n')));
    // A window on the screen does not grow by itself, and would cut off the last lines.
    if (const int needed = layout()->totalHeightForWidth(width()); isVisible() && height() < needed) {
        resize(width(), needed);
    }
    bar->setRange(0, isOver ? 1 : 0);
    bar->setValue(isOver ? 1 : 0);
    // A stopped job still exists.
    cancelButton->setEnabled(!IsGone() && (!isOver || lastStatus.state == jobStateStopped));
}

QString JobProgress::outcome() const {
    return tr("Job %1 on %2: %3")
        .arg(jobNumber)
        .arg(QString::fromStdString(queueName), stateText(lastStatus.state));
}

bool JobProgress::isLeftToPrint() const { return result() == Rejected && !lastStatus.IsOver() && !IsGone(); }

void JobProgress::CancelJob() {
    const std::string reason = cancelJob(queueName, jobNumber);
    cancelReason = reason.empty()
                       ? QString()
                       : tr("The job could not be cancelled: %1").arg(QString::fromStdString(reason));
    lastStatus = jobStatus(jobNumber);
    if (lastStatus.state == jobStateCanceled) {
        timer.stop();
        reject();
        return;
    }
    timer.start(askInterval);
    Show();
}

} // namespace torka::dialog
