// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneColors.h"

#include <QApplication>

namespace torka {

QPalette readableColors() {
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
    return colors;
}

} // namespace torka
