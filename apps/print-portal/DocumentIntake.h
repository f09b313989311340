// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QTemporaryFile>
#include <QTimer>

class QSocketNotifier;

namespace torka::portal {

// Copies the document that a descriptor brings into a temporary file of mode 0600, without blocking.
//
// The copy cannot change while the server reads it, and the program may end meanwhile.
class DocumentIntake final : public QObject {
    Q_OBJECT

public:
    explicit DocumentIntake(const QDBusUnixFileDescriptor& source, QObject* parent = nullptr);
    ~DocumentIntake() override;

    // Emits `finished` later, exactly once.
    void Start();
    // Where the copy is; it lives as long as this object.
    QString Path() const { return copy.fileName(); }

Q_SIGNALS:
    // With a sentence for the person, "" when the copy is complete.
    void finished(const QString& problem);

private:
    void Finish(const QString& problem);
    void TakePiece();

    QDBusUnixFileDescriptor source;
    QTemporaryFile copy;
    QTimer timer; // next piece of a file; end of patience with a pipe
    QSocketNotifier* notifier = nullptr;
    bool isOver = false;
};

} // namespace torka::portal
