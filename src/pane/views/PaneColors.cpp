// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneColors.h"

#include <QAbstractButton>
#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QWidget>

#include <algorithm>
#include <deque>

namespace torka {
namespace {

// The last few: those of a light and a dark theme, and of kinds of controls that have colours of their own.
constexpr std::size_t keptPalettes = 8;

std::deque<QPalette>& sharedPalettes() {
    static std::deque<QPalette> palettes;
    return palettes;
}

// With every role set, so that no resolution makes a copy with another identity.
QPalette withAllRoles(const QPalette& colors) {
    QPalette all = colors;
    for (const auto group : {QPalette::Active, QPalette::Disabled, QPalette::Inactive}) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto known = static_cast<QPalette::ColorRole>(role);
            all.setBrush(group, known, colors.brush(group, known));
        }
    }
    return all;
}

void takeSharedPalette(QWidget& control) {
    std::deque<QPalette>& palettes = sharedPalettes();
    auto found = std::find(palettes.begin(), palettes.end(), control.palette()); // compares the colours
    if (found == palettes.end()) {
        if (palettes.size() == keptPalettes) {
            palettes.pop_front();
        }
        found = palettes.insert(palettes.end(), withAllRoles(control.palette()));
    }
    control.setPalette(*found);
}

// A control with a palette of its own inherits no colours. This takes those of its parent again when they
// change.
class ColorFollower final : public QObject {
public:
    explicit ColorFollower(QWidget& control)
        : QObject(&control) {
        control.parentWidget()->installEventFilter(this);
    }
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::PaletteChange) {
            auto& control = *static_cast<QWidget*>(parent());
            control.setPalette(QPalette());
            takeSharedPalette(control);
        }
        return false;
    }
};

} // namespace

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

void shareColors(QWidget& control) {
    takeSharedPalette(control);
    new ColorFollower(control);
}

void shareColorsBelow(QWidget& place) {
    for (QWidget* control : place.findChildren<QWidget*>()) {
        const bool hasDrawings = qobject_cast<QAbstractButton*>(control) != nullptr ||
                                 qobject_cast<QAbstractSlider*>(control) != nullptr ||
                                 qobject_cast<QAbstractSpinBox*>(control) != nullptr ||
                                 qobject_cast<QComboBox*>(control) != nullptr;
        if (hasDrawings && !control->testAttribute(Qt::WA_SetPalette)) {
            shareColors(*control);
        }
    }
}

QColor blend(const QColor& under, const QColor& over, double share) {
    const auto mix = [share](float a, float b) {
        return static_cast<float>(static_cast<double>(a) * (1 - share) + static_cast<double>(b) * share);
    };
    return QColor::fromRgbF(mix(under.redF(), over.redF()), mix(under.greenF(), over.greenF()),
                            mix(under.blueF(), over.blueF()));
}

} // namespace torka
