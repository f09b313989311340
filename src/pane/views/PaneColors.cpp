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

QColor blend(const QColor& under, const QColor& over, double share) {
    const auto mix = [share](float a, float b) {
        return static_cast<float>(static_cast<double>(a) * (1 - share) + static_cast<double>(b) * share);
    };
    return QColor::fromRgbF(mix(under.redF(), over.redF()), mix(under.greenF(), over.greenF()),
                            mix(under.blueF(), over.blueF()));
}

} // namespace torka
