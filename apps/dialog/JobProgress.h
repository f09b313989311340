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

// Follows a job in a small window. Closing the window lets the job print; only its own button cancels the
// job. While the job waits, the window tells why. It closes itself when the job is complete.
class JobProgress final : public QDialog {
    Q_OBJECT

public:
    JobProgress(std::string queue, int job, const QString& title, QWidget* parent = nullptr);

    // The job's last known state.
    const JobStatus& status() const { return lastStatus; }
    // True when the person closed the window before the job ended.
    bool isLeftToPrint() const;
    // The job's number, queue and state in one line.
    QString outcome() const;

private:
    void Ask();
    void Show();
    void CancelJob();
    bool IsGone() const;
    QString WhyItWaits() const;

    std::string queueName;
    int jobNumber;
    JobStatus lastStatus;
    int failures = 0; // consecutive questions without an answer from the server
    int questions = 0;
    QString queueReason; // why the queue does not print; "" for a queue that does
    int jobsInQueue = 0;
    QString cancelReason; // why the server did not cancel the job
    QLabel* text;
    QLabel* detail;
    QProgressBar* bar;
    QPushButton* cancelButton;
    QPushButton* closeButton;
    QTimer timer;
};

} // namespace torka::dialog
