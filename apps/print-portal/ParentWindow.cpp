// SPDX-License-Identifier: Apache-2.0
#include "apps/print-portal/ParentWindow.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <QWindow>
#include <cstdint>

namespace torka::portal {

namespace {

// The number of an X window, 0 for another handle. X numbers have 29 bits.
std::uint32_t xWindow(const QString& handle) {
    constexpr QLatin1String prefix("x11:");
    constexpr qsizetype longest = 12; // characters
    if (!handle.startsWith(prefix) || handle.size() > prefix.size() + longest) {
        return 0;
    }
    bool isNumber = false;
    const std::uint32_t number = handle.mid(prefix.size()).toUInt(&isNumber, 16);
    return isNumber && number < (1U << 29U) ? number : 0;
}

} // namespace

void standBefore(QWidget& window, const QString& handle, bool isModal) {
    const std::uint32_t number = xWindow(handle);
    if (number == 0 || QGuiApplication::platformName() != QLatin1String("xcb")) {
        return;
    }
    // A window that does not exist has no pixel. A dialog that stood before it would get no input. Qt 6.4
    // does not know the size of a window of another program.
    QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr || screen->grabWindow(number, 0, 0, 1, 1).isNull()) {
        return;
    }
    QWindow* parent = QWindow::fromWinId(number);
    if (parent == nullptr) {
        return;
    }
    window.winId(); // makes the QWindow
    QObject::connect(&window, &QObject::destroyed, parent, &QObject::deleteLater);
    window.windowHandle()->setTransientParent(parent);
    if (isModal) {
        // For that window only: the dialogs of other programs stay usable.
        window.setWindowModality(Qt::WindowModal);
    }
}

} // namespace torka::portal
