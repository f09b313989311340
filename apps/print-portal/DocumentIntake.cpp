// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/DocumentIntake.h"

#include <QDir>
#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::portal {

namespace {

constexpr int patience = 60000; // milliseconds without a byte from a pipe

} // namespace

DocumentIntake::DocumentIntake(const QDBusUnixFileDescriptor& descriptor, QObject* parent)
    : QObject(parent)
    , source(descriptor)
    , copy(QDir::tempPath() + QStringLiteral("/torka-portal-XXXXXX")) {}

DocumentIntake::~DocumentIntake() = default;

void DocumentIntake::Start() {
    struct stat status {};
    if (!source.isValid() || fstat(source.fileDescriptor(), &status) != 0) {
        timer.singleShot(0, this, [this] { Finish(tr("The program sent no document.")); });
        return;
    }
    const bool isFile = S_ISREG(status.st_mode);
    if (!isFile && !S_ISFIFO(status.st_mode) && !S_ISSOCK(status.st_mode)) {
        timer.singleShot(0, this, [this] { Finish(tr("The program sent something that is no document.")); });
        return;
    }
    if (!copy.open()) {
        timer.singleShot(0, this, [this] {
            Finish(tr("The document cannot be kept for printing: %1").arg(copy.errorString()));
        });
        return;
    }
    if (isFile) {
        connect(&timer, &QTimer::timeout, this, &DocumentIntake::TakePiece);
        timer.start(0);
        return;
    }
    notifier = new QSocketNotifier(source.fileDescriptor(), QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &DocumentIntake::TakePiece);
    connect(&timer, &QTimer::timeout, this,
            [this] { Finish(tr("The program began to send a document and did not end it.")); });
    timer.start(patience);
}

void DocumentIntake::TakePiece() {
    static std::array<char, 256 * 1024> piece;
    if (isOver) {
        return;
    }
    // A file is read from its beginning: its writer shares the position with this process.
    const ssize_t length = notifier == nullptr
                               ? pread(source.fileDescriptor(), piece.data(), piece.size(), copy.pos())
                               : ::read(source.fileDescriptor(), piece.data(), piece.size());
    if (length < 0) {
        if (errno != EINTR && errno != EAGAIN) {
            Finish(tr("The document cannot be read: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
        }
        return;
    }
    if (length > 0) {
        if (copy.write(piece.data(), length) != length) {
            Finish(tr("The document cannot be kept for printing: %1").arg(copy.errorString()));
            return;
        }
        timer.start();
        return;
    }
    if (!copy.flush()) {
        Finish(tr("The document cannot be kept for printing: %1").arg(copy.errorString()));
        return;
    }
    Finish(copy.size() == 0 ? tr("The program sent an empty document.") : QString());
}

void DocumentIntake::Finish(const QString& problem) {
    if (isOver) {
        return;
    }
    isOver = true;
    timer.stop();
    if (notifier != nullptr) {
        notifier->setEnabled(false);
    }
    source = QDBusUnixFileDescriptor();
    Q_EMIT finished(problem);
}

} // namespace torka::portal
