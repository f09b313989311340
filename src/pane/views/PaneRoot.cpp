// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneRoot.h"

#include <QApplication>
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

// A contrast of at least 4.5:1 for quiet texts and 3:1 for disabled ones, where the text's own is 12:1.
void PaneRoot::TakePalette() {
    constexpr double quiet = 0.75;
    constexpr double disabled = 0.55;
    const QPalette host = QApplication::palette();
    QPalette colors;
    const auto fade = [&](QPalette::ColorGroup group, QPalette::ColorRole role, QPalette::ColorRole from,
                          double opacity) {
        QColor color = host.color(QPalette::Active, from);
        color.setAlphaF(static_cast<float>(opacity));
        colors.setColor(group, role, color);
    };
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        fade(group, QPalette::PlaceholderText, QPalette::WindowText, quiet);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        fade(QPalette::Disabled, role, role, disabled);
    }
    setPalette(colors);
}

} // namespace torka
