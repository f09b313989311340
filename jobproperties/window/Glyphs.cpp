// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/Glyphs.h"

#include <QPainter>
#include <QStyleOptionFocusRect>

#include <algorithm>

namespace torka::jobproperties {

namespace {

void paintLock(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 0.1, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(0.3, 0.12, 0.4, 0.5), 0, 180 * 16);
    painter.drawLine(QPointF(0.3, 0.37), QPointF(0.3, 0.5));
    painter.drawLine(QPointF(0.7, 0.37), QPointF(0.7, 0.5));
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(QRectF(0.18, 0.47, 0.64, 0.43), 0.08, 0.08);
}

void paintUndo(QPainter& painter, const QColor& color) {
    painter.setPen(QPen(color, 0.1, Qt::SolidLine, Qt::RoundCap));
    painter.drawArc(QRectF(0.2, 0.2, 0.62, 0.62), -150 * 16, 300 * 16);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPolygon(QPolygonF({{0.06, 0.42}, {0.48, 0.42}, {0.2, 0.08}}));
}

} // namespace

void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& square, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width(), square.height());
    painter.setBrush(Qt::NoBrush);
    switch (glyph) {
    case Glyph::Lock:
        paintLock(painter, color);
        break;
    case Glyph::Undo:
        paintUndo(painter, color);
        break;
    }
    painter.restore();
}

GlyphButton::GlyphButton(Glyph shown, QWidget* parent)
    : QAbstractButton(parent)
    , glyph(shown) {
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize GlyphButton::sizeHint() const {
    const int side = fontMetrics().height() + 4;
    return {side, side};
}

void GlyphButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const double side = std::min(width(), height()) - 6.0;
    const QRectF square((width() - side) / 2, (height() - side) / 2, side, side);
    QColor color = palette().color(QPalette::Active, QPalette::WindowText);
    if (!isDown() && !underMouse()) {
        color.setAlphaF(0.7F);
    }
    paintGlyph(painter, glyph, square, color);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect();
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

} // namespace torka::jobproperties
