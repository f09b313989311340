// SPDX-License-Identifier: Apache-2.0
#include "apps/print-dialog/JobProgress.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

namespace torka::dialog {

namespace {

constexpr int askInterval = 150;    // milliseconds
constexpr int silentQuestions = 20; // after so many without an answer the server counts as gone

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
    , button(new QPushButton(this)) {
    setWindowTitle(tr("Printing \u2013 %1").arg(title));
    setMinimumWidth(fontMetrics().averageCharWidth() * 60);
    for (QLabel* label : {text, detail}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
    }
    bar->setAccessibleName(tr("Progress of the job"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text);
    layout->addWidget(bar);
    layout->addWidget(detail);
    layout->addWidget(button, 0, Qt::AlignRight);
    connect(button, &QPushButton::clicked, this, [this] {
        if (lastStatus.IsOver()) {
            accept();
        } else {
            reject();
        }
    });
    connect(&timer, &QTimer::timeout, this, &JobProgress::Ask);
    timer.start(askInterval);
    Show();
}

void JobProgress::Ask() {
    const JobStatus status = jobStatus(jobNumber);
    failures = status.state == 0 ? failures + 1 : 0;
    if (status.state != 0 || failures >= silentQuestions) {
        lastStatus = status;
    }
    if (lastStatus.IsOver() || failures >= silentQuestions) {
        timer.stop();
    }
    Show();
    // A completed job needs no further message.
    if (lastStatus.state == jobStateCompleted) {
        accept();
    }
}

void JobProgress::Show() {
    const bool isOver = !timer.isActive() && (lastStatus.IsOver() || failures >= silentQuestions);
    text->setText(outcome());
    detail->setText(QString::fromStdString(lastStatus.message));
    bar->setRange(0, isOver ? 1 : 0);
    bar->setValue(isOver ? 1 : 0);
    button->setText(isOver ? tr("Close") : tr("Cancel Job"));
}

QString JobProgress::outcome() const {
    return tr("Job %1 on %2: %3")
        .arg(jobNumber)
        .arg(QString::fromStdString(queueName), stateText(lastStatus.state));
}

void JobProgress::reject() {
    if (timer.isActive()) {
        cancelJob(queueName, jobNumber);
        timer.stop();
        lastStatus = jobStatus(jobNumber);
    }
    QDialog::reject();
}

} // namespace torka::dialog
