// SPDX-License-Identifier: Apache-2.0
#include "pane/views/WatermarkPreview.h"

#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/presentation/WatermarkEditing.h"

#include <QPageSize>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace torka {
namespace {

// The size of the paper in points: that of the printer, else the standard size of that name.
QSizeF sizeOf(const PaneContext& context, const std::string& name) {
    if (const auto paper =
            printerPaper(context.panel == nullptr ? nullptr : context.panel->currentPrinter(), name)) {
        return {paper->width, paper->height};
    }
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        const auto size = static_cast<QPageSize::PageSizeId>(id);
        if (size != QPageSize::Custom && QPageSize::key(size) == qText(name)) {
            return QPageSize::size(size, QPageSize::Point);
        }
    }
    return QPageSize::size(context.texts.language.metric ? QPageSize::A4 : QPageSize::Letter,
                           QPageSize::Point);
}

// A font of the screen that looks like the printer's.
QFont screenFont(const std::string& printerFont) {
    const FontLook look = fontLook(printerFont);
    QFont font(qText(look.family));
    font.setStyleHint(look.kind == FontLook::Kind::fixedPitch ? QFont::TypeWriter
                      : look.kind == FontLook::Kind::serif    ? QFont::Serif
                                                              : QFont::SansSerif);
    font.setBold(look.isBold);
    font.setItalic(look.isItalic);
    font.setStyleStrategy(QFont::PreferOutline);
    return font;
}

} // namespace

WatermarkPreview::WatermarkPreview(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext) {
    const int unit = fontMetrics().lineSpacing();
    setMinimumSize(unit * 9, unit * 11);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    TakePaper();
    Show({});
}

void WatermarkPreview::Show(std::optional<WatermarkFields> shown) {
    fields = std::move(shown);
    const PrintedWatermark printed = fields ? printedWatermark(context.texts, *fields) : PrintedWatermark();
    printedText = qText(printed.shown);
    missing = qText(printed.missing);
    setPlainToolTip(*this, missing);
    setAccessibleDescription(missing);
    setAccessibleName(context.Say(words::watermarkPreview,
                                  fields ? qText(fields->text) : context.Say(words::watermarkNone)));
    update();
}

void WatermarkPreview::TakePaper() {
    const PPDXControl* control = context.editor.FindControl("*PageSize");
    paper = sizeOf(context, control == nullptr ? std::string() : PaneEditor::Value(*control));
    if (context.data != nullptr && isLandscape(*context.data)) {
        paper.transpose();
    }
    update();
}

QRectF WatermarkPreview::PageRect() const {
    constexpr double shadow = 4;
    const QRectF room = QRectF(rect()).adjusted(shadow, shadow, -shadow, -shadow);
    const QSizeF size = paper.scaled(room.size(), Qt::KeepAspectRatio);
    return {room.center() - QPointF(size.width() / 2, size.height() / 2), size};
}

void WatermarkPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF page = PageRect();
    painter.fillRect(page.translated(2, 2), QColor(0, 0, 0, 70));
    painter.fillRect(page, Qt::white);
    painter.setClipRect(page);
    painter.translate(page.center());
    const double scale = page.width() / paper.width();
    painter.scale(scale, scale);
    // Grey lines stand for text, to show how strong the watermark is.
    constexpr double margin = 72;
    constexpr double line = 28;
    const QRectF body(-paper.width() / 2 + margin, -paper.height() / 2 + margin, paper.width() - 2 * margin,
                      paper.height() - 2 * margin);
    int number = 0;
    for (double y = body.top(); y < body.bottom(); y += line) {
        const double share = ++number % 6 == 0 ? 0.6 : 1.0;
        painter.fillRect(QRectF(body.left(), y, body.width() * share, line / 4), QColor(228, 228, 228));
    }
    if (fields) {
        PaintText(painter);
    }
    painter.resetTransform();
    painter.setClipping(false);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(page);
}

// Follows the PostScript of the job: moves the text, turns it about its middle, and puts its baseline a third
// of the size below.
void WatermarkPreview::PaintText(QPainter& painter) const {
    constexpr int outlineSize = 100; // pixels; the outline is scaled, because a font size may be any number
    QFont font = screenFont(fields->fontName);
    font.setPixelSize(outlineSize);
    const double width = QFontMetricsF(font).horizontalAdvance(printedText);
    QPainterPath outline;
    outline.addText(-width / 2, outlineSize / 3.0, font, printedText);
    painter.translate(fields->xOffset, -fields->yOffset);
    painter.rotate(-fields->angle / 10.0);
    const double scale = std::clamp(fields->fontSize, 0, 10000) / static_cast<double>(outlineSize);
    painter.scale(scale, scale);
    if (fields->isClear) {
        painter.setPen(QPen(QColor(150, 150, 150), 1.5, Qt::DotLine));
        painter.setBrush(QColor(255, 255, 255, 150));
        painter.drawPath(outline);
    } else {
        painter.fillPath(outline, QColor(fields->red, fields->green, fields->blue));
    }
}

} // namespace torka
