// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneRoot.h"

#include "pane/views/PaneColors.h"

#include <QEvent>
#include <QPixmapCache>

#include <utility>

namespace torka {

namespace {

// A style's drawings of controls stay in Qt's cache under names that hold the palette's identity. Qt 6.4
// forgets the drawings in time, but never their names: 11 kB for each pane, whose palette is its own.
// Emptying the cache frees them; the next painting draws again what it needs.
constexpr int panesUntilCleared = 100;

void countEndedPane() {
    static int ended = 0;
    if (++ended % panesUntilCleared == 0) {
        QPixmapCache::clear();
    }
}

} // namespace

PaneRoot::PaneRoot() {
    TakePalette();
    painted.setSingleShot(true);
    QObject::connect(&painted, &QTimer::timeout, this, [this] { std::exchange(firstPainted, nullptr)(); });
}

PaneRoot::~PaneRoot() {
    countEndedPane();
    if (gone) {
        gone();
    }
}

void PaneRoot::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (firstPainted) {
        painted.start(0);
    }
}

void PaneRoot::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // A view within a dialog hears of the application's colours as a change of its own palette.
    if (event->type() == QEvent::ApplicationPaletteChange || event->type() == QEvent::PaletteChange) {
        TakePalette(); // sends no event when nothing changes
    }
}

void PaneRoot::TakePalette() { setPalette(readableColors()); }

} // namespace torka
