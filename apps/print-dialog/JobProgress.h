// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Spooler.h"
#include "platform/cups/CupsQueue.h"

#include <QDialog>
#include <QTimer>
#include <string>

class QLabel;
class QProgressBar;
class QPushButton;

namespace torka::dialog {

// Follows a job to its end in a small window. The person can cancel the job there.
class JobProgress final : public QDialog {
    Q_OBJECT

public:
    JobProgress(std::string queue, int job, const QString& title, QWidget* parent = nullptr);

    // The job's last known state.
    const JobStatus& status() const { return lastStatus; }
    // The job's number, queue and state in one line.
    QString outcome() const;

    void reject() override; // cancels a job that is not over

private:
    void Ask();
    void Show();

    std::string queueName;
    int jobNumber;
    JobStatus lastStatus;
    int failures = 0; // consecutive questions without an answer from the server
    QLabel* text;
    QLabel* detail;
    QProgressBar* bar;
    QPushButton* button;
    QTimer timer;
};

} // namespace torka::dialog
