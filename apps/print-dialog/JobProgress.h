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

// Follows a job to its end in a small window, where a person can cancel it.
class JobProgress final : public QDialog {
    Q_OBJECT

public:
    JobProgress(std::string queue, int job, const QString& title, QWidget* parent = nullptr);

    // The job's last known state; IsOver() once the window says so.
    const JobStatus& status() const { return lastStatus; }
    // One line for people and for logs: what became of the job.
    QString outcome() const;

    void reject() override; // cancels the job first, when it is not over

private:
    void Ask();
    void Show();

    std::string queueName;
    int jobNumber;
    JobStatus lastStatus;
    int failures = 0; // questions in a row that the server did not answer
    QLabel* text;
    QLabel* detail;
    QProgressBar* bar;
    QPushButton* button;
    QTimer timer;
};

} // namespace torka::dialog
