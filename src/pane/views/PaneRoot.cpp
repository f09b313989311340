// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneRoot.h"

#include "pane/views/PaneColors.h"

#include <QEvent>

#include <utility>

namespace torka {

PaneRoot::PaneRoot() {
    TakePalette();
    painted.setSingleShot(true);
    QObject::connect(&painted, &QTimer::timeout, this, [this] { std::exchange(firstPainted, nullptr)(); });
}

PaneRoot::~PaneRoot() {
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
