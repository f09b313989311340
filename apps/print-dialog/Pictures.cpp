// SPDX-License-Identifier: Apache-2.0
#include "apps/print-dialog/Pictures.h"

#include "apps/dialog/PrintDialog.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QListWidget>
#include <QPixmap>

namespace torka::dialog {

namespace {

constexpr int settleTime = 200; // milliseconds

// Waits for work that widgets defer until after their first painting.
void settle() {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < settleTime) {
        QApplication::processEvents(QEventLoop::AllEvents, settleTime);
    }
}

} // namespace

bool takePictures(PrintDialog& dialog, const QString& folder, QString& error) {
    if (!QDir().mkpath(folder)) {
        error = QCoreApplication::translate("torka", "%1 cannot be made").arg(folder);
        return false;
    }
    dialog.show();
    dialog.showPane();
    settle();
    int number = 0;
    const auto take = [&](QWidget& widget) {
        const QString path = QStringLiteral("%1/%2.png").arg(folder).arg(++number, 2, 10, QLatin1Char('0'));
        if (!widget.grab().save(path)) {
            error = QCoreApplication::translate("torka", "%1 cannot be written").arg(path);
            return false;
        }
        return true;
    };
    if (!take(dialog)) {
        return false;
    }
    auto* pages = dialog.tab().findChild<QListWidget*>();
    for (int row = 1; pages != nullptr && row < pages->count(); ++row) {
        pages->setCurrentRow(row);
        settle();
        if (!take(dialog)) {
            return false;
        }
    }
    dialog.reject();
    return true;
}

} // namespace torka::dialog
