// SPDX-License-Identifier: Apache-2.0
#include "pane/views/SheetPainter.h"

#include "pane/presentation/WatermarkEditing.h"
#include "pane/views/PaneColors.h"
#include "pane/views/PlainTexts.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPageSize>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace torka {
namespace {

constexpr QColor textGray(228, 228, 228);
constexpr QColor numberGray(96, 96, 96); // readable on white and on the lines of text
constexpr QColor metal(70, 70, 80);
constexpr QColor cut(200, 60, 40);
constexpr QColor glueColor(205, 170, 90);

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

// Follows the PostScript of the job: moves the text, turns it about its middle, and puts its baseline a third
// of the size below. The origin is the middle of the page.
void paintWatermark(QPainter& painter, const WatermarkFields& fields) {
    constexpr int outlineSize = 100; // pixels; the outline is scaled, because a font size may be any number
    QFont font = screenFont(fields.fontName);
    font.setPixelSize(outlineSize);
    const QString text = qText(fields.text);
    const double width = QFontMetricsF(font).horizontalAdvance(text);
    QPainterPath outline;
    outline.addText(-width / 2, outlineSize / 3.0, font, text);
    painter.translate(fields.xOffset, -fields.yOffset);
    painter.rotate(-fields.angle / 10.0);
    const double scale = std::clamp(fields.fontSize, 0, 10000) / static_cast<double>(outlineSize);
    painter.scale(scale, scale);
    if (fields.isClear) {
        painter.setPen(QPen(QColor(150, 150, 150), 1.5, Qt::DotLine));
        painter.setBrush(QColor(255, 255, 255, 150));
        painter.drawPath(outline);
    } else {
        painter.fillPath(outline, QColor(fields.red, fields.green, fields.blue));
    }
}

// Grey lines stand for text, to show how strong the watermark is. The origin is the middle of the page.
void paintText(QPainter& painter, const QSizeF& size, bool hasColor) {
    constexpr double margin = 72;
    constexpr double line = 28;
    const QRectF body(-size.width() / 2 + margin, -size.height() / 2 + margin, size.width() - 2 * margin,
                      size.height() - 2 * margin);
    const QRectF picture(body.left(), body.top(), body.width() * 0.45, line * 4.25);
    const int lines = static_cast<int>(std::ceil(body.height() / line));
    for (int number = 1; number <= lines; ++number) {
        const double y = body.top() + (number - 1) * line;
        const bool isBeside = hasColor && y < picture.bottom();
        const double left = isBeside ? picture.right() + line / 2 : body.left();
        const double share = number % 6 == 0 ? 0.6 : 1.0;
        painter.fillRect(QRectF(left, y, (body.right() - left) * share, line / 4), textGray);
    }
    if (hasColor) {
        painter.setRenderHint(QPainter::Antialiasing, false); // fills without threads
        painter.fillRect(picture, QColor(190, 215, 240));
        painter.fillRect(picture.adjusted(0, picture.height() * 0.6, 0, 0), QColor(190, 225, 185));
        painter.setRenderHint(QPainter::Antialiasing);
    }
}

void paintNumber(QPainter& painter, const QRectF& rect, int number) {
    QFont font = painter.font();
    const double height = std::min(rect.width(), rect.height()) * 0.3;
    font.setPixelSize(std::max(7, static_cast<int>(height)));
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(numberGray);
    painter.drawText(rect, Qt::AlignCenter, QString::number(number));
}

class SheetMarks {
public:
    SheetMarks(QPainter& usedPainter, const QRectF& sheet, const JobSheets& job, bool isBack,
               const QPalette& colors)
        : painter(usedPainter)
        , rect(sheet)
        , sheets(job)
        , back(isBack)
        , palette(colors)
        , unit(std::min(sheet.width(), sheet.height()) / 100) {}

    void Paint() {
        PaintTrim();
        PaintSpine();
        PaintFolds();
        PaintBinding();
        PaintHoles();
        PaintStaples();
    }

private:
    // The back shows what goes through the sheet as in a mirror.
    QPointF At(double x, double y) const {
        if (back) {
            (sheets.TurnEdge() == SheetEdge::left ? x : y) =
                1 - (sheets.TurnEdge() == SheetEdge::left ? x : y);
        }
        return {rect.left() + x * rect.width(), rect.top() + y * rect.height()};
    }

    void Line(double x1, double y1, double x2, double y2) { painter.drawLine(At(x1, y1), At(x2, y2)); }

    void PaintFolds() {
        painter.setPen(QPen(palette.color(QPalette::Highlight), std::max(1.2, unit), Qt::DashLine));
        for (const double x : sheets.Folds()) {
            Line(x, 0, x, 1);
        }
    }

    // The glue of a booklet whose folded sheets lie side by side.
    void PaintSpine() {
        constexpr double halfWidth = 0.012;
        if (sheets.booklet == JobSheets::Booklet::perfect) {
            for (const double x : sheets.Folds()) {
                painter.fillRect(QRectF(At(x - halfWidth, 0), At(x + halfWidth, 1)).normalized(), glueColor);
            }
        }
    }

    void PaintTrim() {
        painter.setPen(QPen(cut, std::max(1.2, unit), Qt::DashDotLine));
        for (const double x : sheets.Cuts()) {
            Line(x, 0, x, 1);
        }
        if (sheets.trim == JobSheets::Trim::none) {
            return;
        }
        constexpr double inwards = 0.035;
        const bool isAtLeft = sheets.bindingEdge == SheetEdge::right;
        const double foreEdge = isAtLeft ? inwards : 1 - inwards;
        Line(foreEdge, 0, foreEdge, 1);
        if (sheets.booklet != JobSheets::Booklet::none && sheets.Cuts().empty()) {
            Line(1 - foreEdge, 0, 1 - foreEdge, 1); // both halves end at the fore-edge
        }
        if (sheets.trim == JobSheets::Trim::threeSides) {
            Line(0, inwards, 1, inwards);
            Line(0, 1 - inwards, 1, 1 - inwards);
        }
    }

    void PaintBinding() {
        if (sheets.binding == JobSheets::Binding::none) {
            return;
        }
        const auto edgeRect = [&](double from, double to, double depth) {
            switch (sheets.bindingEdge) {
            case SheetEdge::top:
                return QRectF(At(from, 0), At(to, depth)).normalized();
            case SheetEdge::right:
                return QRectF(At(1 - depth, from), At(1, to)).normalized();
            case SheetEdge::left:
                break;
            }
            return QRectF(At(0, from), At(depth, to)).normalized();
        };
        if (sheets.binding == JobSheets::Binding::ring) {
            constexpr int rings = 15;
            painter.setPen(QPen(metal, std::max(1.0, unit * 0.8)));
            painter.setBrush(Qt::NoBrush);
            for (int i = 0; i < rings; ++i) {
                const double from = (i + 0.6) / (rings + 0.7);
                painter.drawEllipse(edgeRect(from, from + 0.02, 0.06));
            }
            return;
        }
        const bool isTape = sheets.binding == JobSheets::Binding::tape;
        constexpr double tape = 0.07;
        constexpr double glue = 0.03;
        painter.fillRect(edgeRect(0, 1, isTape ? tape : glue), isTape ? metal : glueColor);
    }

    void PaintHoles() {
        constexpr int comb = 5;
        const double radius = unit * (sheets.holes > comb ? 1.2 : 2.2);
        painter.setPen(QPen(metal, std::max(0.8, unit * 0.5)));
        painter.setBrush(palette.color(QPalette::Window));
        for (const JobSheets::Place& place : sheets.HolePlaces()) {
            painter.drawEllipse(At(place.x, place.y), radius, radius);
        }
    }

    void PaintStaples() {
        painter.setPen(QPen(metal, std::max(2.0, unit * 1.6), Qt::SolidLine, Qt::RoundCap));
        for (const JobSheets::Staple& staple : sheets.staples) {
            painter.save();
            painter.translate(At(staple.place.x, staple.place.y));
            painter.rotate(back ? -staple.angle : staple.angle);
            painter.drawLine(QPointF(-unit * 4, 0), QPointF(unit * 4, 0));
            painter.restore();
        }
    }

    QPainter& painter;
    const QRectF rect;
    const JobSheets& sheets;
    const bool back;
    const QPalette& palette;
    const double unit; // pixels
};

void paintPages(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QSizeF& size,
                bool back) {
    const std::vector<int> numbers = sheets.PageNumbers(back);
    const bool isOne = numbers.size() == 1;
    const double gap = isOne ? 0 : std::min(rect.width(), rect.height()) * 0.03;
    const bool isNumbered = !isOne || sheets.sides != JobSheets::Sides::one;
    const QSizeF page = sheets.isLandscape ? QSizeF(size.transposed()) : size;
    const QSizeF cell((rect.width() - gap) / sheets.columns, (rect.height() - gap) / sheets.rows);
    const auto columns = static_cast<std::size_t>(sheets.columns);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const std::size_t column = i % columns;
        const std::size_t row = i / columns;
        const QRectF room(QPointF(rect.left() + gap + static_cast<double>(column) * cell.width(),
                                  rect.top() + gap + static_cast<double>(row) * cell.height()),
                          QSizeF(cell.width() - gap, cell.height() - gap));
        const QRectF place = fitted(page, room);
        paintPage(
            painter, place,
            {page,
             sheets.watermark && !(back && sheets.watermark->isFirstPageOnly) ? &*sheets.watermark : nullptr,
             !sheets.isGray, sheets.isMirrored, sheets.rotation, isNumbered ? numbers[i] : 0});
        if (sheets.hasBorders) {
            painter.setPen(QPen(metal, 1));
            painter.setBrush(Qt::NoBrush);
            painter.drawRect(place);
        }
    }
}

// The edge of the sheet after its folds, in units of a third of the rectangle's width.
QPolygonF foldedEdge(const JobSheets& sheets) {
    switch (sheets.fold) {
    case JobSheets::Fold::none:
    case JobSheets::Fold::half:
        return {{{3, 0.3}, {0, 1}, {3, 1.7}}};
    case JobSheets::Fold::letter:
        return {{{2.8, 1.1}, {0.1, 0.8}, {0, 1.6}, {3, 1.7}, {3, 0.3}, {0.3, 0.1}}};
    case JobSheets::Fold::accordion:
        return {{{3, 0.2}, {0, 0.7}, {3, 1.2}, {0, 1.7}}};
    case JobSheets::Fold::z:
        return {{{3, 0.3}, {1.5, 0.8}, {3, 1.2}, {0, 1.7}}};
    case JobSheets::Fold::gate:
        return {{{1.4, 0.6}, {0, 0.3}, {0, 1.7}, {3, 1.7}, {3, 0.3}, {1.6, 0.6}}};
    }
    return {};
}

QColor colorOf(JobSheets::Leaf leaf) {
    switch (leaf) {
    case JobSheets::Leaf::cover:
        return {200, 220, 245};
    case JobSheets::Leaf::insert:
        return {250, 235, 180};
    case JobSheets::Leaf::slip:
        return {245, 205, 205};
    case JobSheets::Leaf::banner:
        return {215, 235, 210};
    case JobSheets::Leaf::page:
        break;
    }
    return Qt::white;
}

} // namespace

QSizeF paperSize(const std::string& name, const std::optional<PaperSize>& known, bool metric) {
    if (known) {
        return {known->width, known->height};
    }
    for (int id = 0; id <= QPageSize::LastPageSize; ++id) {
        const auto size = static_cast<QPageSize::PageSizeId>(id);
        if (size != QPageSize::Custom && QPageSize::key(size) == qText(name)) {
            return QPageSize::size(size, QPageSize::Point);
        }
    }
    return QPageSize::size(metric ? QPageSize::A4 : QPageSize::Letter, QPageSize::Point);
}

QRectF fitted(const QSizeF& size, const QRectF& room) {
    const QSizeF scaled = size.scaled(room.size(), Qt::KeepAspectRatio);
    return {room.center() - QPointF(scaled.width() / 2, scaled.height() / 2), scaled};
}

void paintPaper(QPainter& painter, const QRectF& rect, const QPalette& palette, const QColor& color) {
    painter.save();
    // Qt blends an area of many lines in threads, which cost more than they save here. Opaque colours without
    // antialiasing need no blending.
    painter.setRenderHint(QPainter::Antialiasing, false);
    constexpr double depth = 2;
    constexpr double strength = 0.27;
    const QColor shadow = blend(palette.color(QPalette::Window), Qt::black, strength);
    painter.fillRect(QRectF(rect.right(), rect.top() + depth, depth, rect.height()), shadow);
    painter.fillRect(QRectF(rect.left() + depth, rect.bottom(), rect.width() - depth, depth), shadow);
    painter.setPen(palette.color(QPalette::Mid));
    painter.setBrush(color);
    painter.drawRect(rect);
    painter.restore();
}

void paintPage(QPainter& painter, const QRectF& rect, const PageLook& look) {
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.translate(rect.center());
    if (look.isMirrored) {
        painter.scale(-1, 1);
    }
    painter.rotate(look.rotation);
    const bool isAcross = look.rotation % 180 != 0;
    const QSizeF turned = isAcross ? look.size.transposed() : look.size;
    const double scale = std::min(rect.width() / turned.width(), rect.height() / turned.height());
    painter.scale(scale, scale);
    paintText(painter, look.size, look.hasColor);
    if (look.number != 0) {
        paintNumber(painter, QRectF(QPointF(-look.size.width() / 2, -look.size.height() / 2), look.size),
                    look.number);
    }
    if (look.watermark != nullptr) {
        paintWatermark(painter, *look.watermark);
    }
    painter.restore();
}

void paintSheet(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QSizeF& size, bool back,
                const QPalette& palette) {
    paintPaper(painter, rect, palette, Qt::white);
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    paintPages(painter, rect, sheets, size, back);
    SheetMarks(painter, rect, sheets, back, palette).Paint();
    painter.restore();
}

void paintFold(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QPalette& palette) {
    if (sheets.Folds().empty()) {
        return;
    }
    constexpr double side = 3; // units
    const double unit = std::min(rect.width(), rect.height()) / side;
    QPolygonF edge = foldedEdge(sheets);
    for (QPointF& point : edge) {
        point = rect.center() + (point - QPointF(side / 2, 1)) * unit;
    }
    painter.save();
    painter.setPen(QPen(palette.color(QPalette::WindowText), 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(edge);
    painter.restore();
}

void paintLeaves(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QSizeF& size,
                 const QPalette& palette) {
    const auto leaves = sheets.Leaves();
    if (leaves.empty()) {
        return;
    }
    constexpr double distance = 1.15; // from leaf to leaf, in widths of a leaf
    const double count = static_cast<double>(leaves.size());
    const QSizeF sheet = sheets.IsSheetLandscape() ? size.transposed() : size;
    const double widths = 1 + distance * (count - 1); // of the row
    const QSizeF leaf = sheet.scaled(QSizeF(rect.width() / widths, rect.height()), Qt::KeepAspectRatio);
    double left = rect.center().x() - leaf.width() * widths / 2;
    for (const JobSheets::Leaf kind : leaves) {
        const QRectF place(QPointF(left, rect.center().y() - leaf.height() / 2), leaf);
        if (kind == JobSheets::Leaf::page) {
            paintSheet(painter, place, sheets, size, false, palette);
        } else {
            paintPaper(painter, place, palette, colorOf(kind));
        }
        left += leaf.width() * distance;
    }
}

} // namespace torka
