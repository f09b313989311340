// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneRoot.h"

#include <QTimer>

#include <utility>

namespace torka {

PaneRoot::~PaneRoot() {
    if (gone) {
        gone();
    }
}

void PaneRoot::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (firstPainted) {
        QTimer::singleShot(0, this, std::exchange(firstPainted, nullptr));
    }
}

} // namespace torka
