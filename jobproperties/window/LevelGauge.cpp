// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/LevelGauge.h"

#include "jobproperties/window/LetterWidth.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace torka::jobproperties {

namespace {

constexpr qsizetype maximumColors = 8;

} // namespace

LevelGauge::LevelGauge(QWidget* parent)
    : QProgressBar(parent) {
    setRange(0, 100);
    setTextVisible(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LevelGauge::SetLevel(int percent) {
    isKnown = percent >= 0;
    setValue(std::clamp(percent, 0, 100));
    update();
}

void LevelGauge::SetColors(const QList<QColor>& bands) {
    colors = bands;
    update();
}

QSize LevelGauge::sizeHint() const {
    return {letterWidth(fontMetrics()) * 16, fontMetrics().height() * 3 / 4};
}

QList<QColor> LevelGauge::ColorsFromText(const QString& text) {
    QList<QColor> found;
    for (qsizetype at = text.indexOf('#'); at >= 0 && found.size() < maximumColors;
         at = text.indexOf('#', at + 1)) {
        if (const QColor color(text.mid(at, 7)); color.isValid()) {
            found.push_back(color);
        }
    }
    return found;
}

void LevelGauge::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const double radius = frame.height() / 4;
    QPainterPath shape;
    shape.addRoundedRect(frame, radius, radius);
    painter.fillPath(shape, palette().color(QPalette::Base));
    painter.save();
    painter.setClipPath(shape);
    if (isKnown) {
        const QList<QColor> bands =
            colors.isEmpty() ? QList<QColor>{palette().color(QPalette::Highlight)} : colors;
        const double bandHeight = frame.height() / static_cast<double>(bands.size());
        double width = frame.width() * value() / 100.0;
        for (qsizetype i = 0; i < bands.size(); ++i) {
            painter.fillRect(
                QRectF(frame.left(), frame.top() + bandHeight * static_cast<double>(i), width, bandHeight),
                bands[i]);
        }
        if (value() > 0 && value() < 100) { // the end is visible even when the two colours are similar
            painter.fillRect(QRectF(frame.left() + width, frame.top(), 1, frame.height()),
                             palette().color(QPalette::Text));
        }
    } else {
        painter.fillRect(frame, QBrush(palette().color(QPalette::Text), Qt::BDiagPattern));
    }
    painter.restore();
    QColor line = palette().color(QPalette::Text);
    line.setAlphaF(0.6F);
    painter.setPen(QPen(line, 1));
    painter.drawPath(shape);
}

} // namespace torka::jobproperties
