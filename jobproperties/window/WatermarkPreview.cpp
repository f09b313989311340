// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/WatermarkPreview.h"

#include "jobproperties/window/LetterWidth.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace torka::jobproperties {

namespace {

constexpr QSizeF sheet(595, 842); // points

// Returns a font of this system that resembles the PostScript font.
QFont fontFor(const QString& name) {
    QString family = QStringLiteral("Helvetica");
    if (name.startsWith(QStringLiteral("Times"))) {
        family = QStringLiteral("Times");
    } else if (name.startsWith(QStringLiteral("Courier"))) {
        family = QStringLiteral("Courier");
    }
    QFont font(family);
    font.setStyleHint(family == QStringLiteral("Times")     ? QFont::Serif
                      : family == QStringLiteral("Courier") ? QFont::Monospace
                                                            : QFont::SansSerif);
    font.setBold(name.contains(QStringLiteral("Bold")));
    font.setItalic(name.contains(QStringLiteral("Oblique")) || name.contains(QStringLiteral("Italic")));
    return font;
}

} // namespace

WatermarkPreview::WatermarkPreview(QWidget* parent)
    : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setAccessibleName(tr("Preview"));
}

void WatermarkPreview::Show(const Watermark* shown) {
    isEmpty = shown == nullptr;
    watermark = isEmpty ? Watermark() : *shown;
    setAccessibleDescription(isEmpty ? tr("Empty page") : QString::fromStdString(watermark.text));
    update();
}

QSize WatermarkPreview::sizeHint() const {
    const int width = letterWidth(fontMetrics()) * 30;
    return {width, static_cast<int>(width * sheet.height() / sheet.width())};
}

void WatermarkPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const double scale = std::min((width() - 2) / sheet.width(), (height() - 2) / sheet.height());
    painter.translate((width() - sheet.width() * scale) / 2, (height() - sheet.height() * scale) / 2);
    painter.scale(scale, scale);
    const QRectF page(QPointF(0, 0), sheet);
    painter.fillRect(page, Qt::white);
    painter.setPen(QPen(QColor(128, 128, 128), 1 / scale));
    painter.drawRect(page);
    if (isEmpty) {
        return;
    }
    // Lines represent the page's content.
    for (int y = 90; y < sheet.height() - 70; y += 22) {
        painter.fillRect(QRectF(70, y, y > sheet.height() - 120 ? 220 : sheet.width() - 140, 7),
                         QColor(228, 228, 228));
    }
    painter.setClipRect(page);
    painter.translate(page.center().x() + watermark.right, page.center().y() - watermark.up);
    painter.rotate(-watermark.angle / 10.0);
    QFont font = fontFor(QString::fromStdString(watermark.font));
    font.setPixelSize(std::clamp(watermark.size, 1, 2000));
    painter.setFont(font);
    const QString text = QString::fromStdString(watermark.text).left(400);
    const double textWidth = QFontMetricsF(font).horizontalAdvance(text);
    // A clear watermark has no colour: an outline shows where the varnish goes.
    if (watermark.clear) {
        QPainterPath outline;
        outline.addText(-textWidth / 2, watermark.size / 3.0, font, text);
        painter.setPen(QPen(QColor(90, 90, 90), 1.5, Qt::DashLine));
        painter.drawPath(outline);
    } else {
        painter.setPen(QColor(watermark.color[0], watermark.color[1], watermark.color[2]));
        painter.drawText(QPointF(-textWidth / 2, watermark.size / 3.0), text);
    }
}

} // namespace torka::jobproperties
