// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PaneIcons.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QPixmapCache>

namespace torka {
namespace {

// The signs are drawn in a square of 16 units.
constexpr double unitSquare = 16.0;

QPainterPath chevron(bool open) {
    QPainterPath path;
    path.moveTo(open ? QPointF(4, 6) : QPointF(6, 4));
    path.lineTo(open ? QPointF(8, 10) : QPointF(10, 8));
    path.lineTo(open ? QPointF(12, 6) : QPointF(6, 12));
    return path;
}

// An arrow in an arc, counter-clockwise from the right.
QPainterPath turningArrow() {
    QPainterPath path;
    path.moveTo(6, 3.5);
    path.lineTo(3, 6.5);
    path.lineTo(6, 9.5);
    path.moveTo(3, 6.5);
    path.lineTo(9.5, 6.5);
    path.arcTo(QRectF(6.5, 6.5, 6.5, 6.5), 90, -180);
    path.lineTo(6.5, 13);
    return path;
}

QPainterPath circleArrow() {
    QPainterPath path;
    path.arcMoveTo(QRectF(3, 3, 10, 10), 150);
    path.arcTo(QRectF(3, 3, 10, 10), 150, 300);
    path.moveTo(2.6, 2.4);
    path.lineTo(3.4, 6.0);
    path.lineTo(7.0, 5.2);
    return path;
}

QPainterPath outline(PaneSign sign) {
    QPainterPath path;
    switch (sign) {
    case PaneSign::open:
    case PaneSign::closed:
        return chevron(sign == PaneSign::open);
    case PaneSign::undo:
    case PaneSign::redo:
        return turningArrow();
    case PaneSign::reset:
        return circleArrow();
    case PaneSign::search:
        path.addEllipse(QPointF(7, 7), 4, 4);
        path.moveTo(10, 10);
        path.lineTo(13.5, 13.5);
        return path;
    case PaneSign::warning:
        path.moveTo(8, 2);
        path.lineTo(14.5, 13.5);
        path.lineTo(1.5, 13.5);
        path.closeSubpath();
        path.moveTo(8, 6);
        path.lineTo(8, 9.5);
        path.moveTo(8, 11.4);
        path.lineTo(8, 11.6);
        return path;
    case PaneSign::information:
        path.addEllipse(QPointF(8, 8), 6, 6);
        path.moveTo(8, 7.4);
        path.lineTo(8, 11);
        path.moveTo(8, 4.9);
        path.lineTo(8, 5.1);
        return path;
    case PaneSign::ring:
        path.addEllipse(QPointF(8, 8), 4, 4);
        return path;
    case PaneSign::cross:
        path.moveTo(4.5, 4.5);
        path.lineTo(11.5, 11.5);
        path.moveTo(11.5, 4.5);
        path.lineTo(4.5, 11.5);
        return path;
    case PaneSign::sheet:
        path.moveTo(3.5, 2);
        path.lineTo(9.5, 2);
        path.lineTo(12.5, 5);
        path.lineTo(12.5, 14);
        path.lineTo(3.5, 14);
        path.closeSubpath();
        path.moveTo(6, 7);
        path.lineTo(10, 7);
        path.moveTo(6, 10);
        path.lineTo(10, 10);
        return path;
    case PaneSign::dot:
        break;
    }
    path.addEllipse(QPointF(8, 8), 4, 4);
    return path;
}

bool isMirrored(PaneSign sign) {
    const bool points = sign == PaneSign::closed || sign == PaneSign::undo || sign == PaneSign::redo;
    const bool rightToLeft = points && QApplication::isRightToLeft();
    return (sign == PaneSign::redo) != rightToLeft;
}

class SignEngine final : public QIconEngine {
public:
    explicit SignEngine(PaneSign drawn)
        : sign(drawn) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QColor color = ColorOf(mode);
        const double size = std::min(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center());
        painter->scale(size / unitSquare * (isMirrored(sign) ? -1 : 1), size / unitSquare);
        painter->translate(-unitSquare / 2, -unitSquare / 2);
        constexpr double stroke = 1.4;
        painter->setPen(QPen(color, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(sign == PaneSign::dot ? QBrush(color) : QBrush(Qt::NoBrush));
        painter->drawPath(outline(sign));
        painter->restore();
    }

    // A page shows the same few signs in each of its rows, so that drawn ones are kept.
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        const QString key = QStringLiteral("torka-sign %1 %2x%3 %4 %5")
                                .arg(static_cast<int>(sign))
                                .arg(size.width())
                                .arg(size.height())
                                .arg(ColorOf(mode).rgba(), 0, 16)
                                .arg(isMirrored(sign) ? 1 : 0);
        QPixmap picture;
        if (QPixmapCache::find(key, &picture)) {
            return picture;
        }
        picture = QPixmap(size);
        picture.fill(Qt::transparent);
        {
            QPainter painter(&picture);
            paint(&painter, QRect(QPoint(), size), mode, state);
        }
        QPixmapCache::insert(key, picture);
        return picture;
    }

    QIconEngine* clone() const override { return new SignEngine(*this); }

private:
    static QColor ColorOf(QIcon::Mode mode) {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role = mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        return QApplication::palette().color(group, role);
    }

    PaneSign sign;
};

} // namespace

QIcon paneIcon(PaneSign sign) { return QIcon(new SignEngine(sign)); }

} // namespace torka
