// SPDX-License-Identifier: Apache-2.0
#include "pane/views/JobPicture.h"

#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/presentation/WatermarkEditing.h"
#include "pane/views/SheetPainter.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace torka {
namespace {

constexpr double gap = 10; // pixels

} // namespace

JobPicture::JobPicture(PaneContext& paneContext, QWidget* parent)
    : QWidget(parent)
    , context(paneContext) {
    setObjectName(QStringLiteral("jobPicture"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored); // never widens the pane
    pending.setSingleShot(true);
    setAccessibleName(context.Say(words::jobPicture));
    pending.setInterval(0);
    connect(&pending, &QTimer::timeout, this, [this] { TakeSettings(); });
}

void JobPicture::Follow() {
    if (isVisible()) {
        pending.start();
    }
}

void JobPicture::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    TakeSettings();
}

void JobPicture::TakeSettings() {
    pending.stop();
    JobSheets now = jobSheets(context.editor, context.data,
                              context.panel == nullptr ? nullptr : context.panel->currentPrinter());
    if (now.watermark) {
        now.watermark->text = printedWatermark(context.texts, *now.watermark).shown;
    }
    QString nowInWords = qText(joined(jobSentences(context.texts, now), " · "));
    if (now == sheets && nowInWords == sentences) {
        return; // most settings show nothing here
    }
    sheets = std::move(now);
    sentences = std::move(nowInWords);
    setAccessibleDescription(sentences);
    setToolTip(plainToolTip(sentences));
    update();
}

QSize JobPicture::minimumSizeHint() const {
    const int unit = fontMetrics().lineSpacing();
    return {unit * 17, unit * 10};
}

QSize JobPicture::sizeHint() const { return minimumSizeHint() * 2; }

void JobPicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QRectF room = QRectF(rect()).adjusted(gap, gap, -gap, -gap);
    // The words stand below and take at most a quarter of the height.
    const QRectF words = painter.boundingRect(room, Qt::TextWordWrap | Qt::AlignHCenter, sentences);
    const double wordsHeight = std::min(words.height(), room.height() / 4);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRectF(room.left(), room.bottom() - wordsHeight, room.width(), wordsHeight),
                     Qt::TextWordWrap | Qt::AlignHCenter, sentences);
    room.setBottom(room.bottom() - wordsHeight - gap);
    PaintSheets(painter, room);
}

void JobPicture::PaintSheets(QPainter& painter, const QRectF& room) const {
    QSizeF size = paperSize(sheets.paper, sheets.size, context.texts.language.metric);
    const QSizeF sheet = sheets.IsSheetLandscape() ? size.transposed() : size;
    QRectF front = room;
    const bool hasFold = !sheets.Folds().empty();
    if (hasFold || !sheets.Leaves().empty()) {
        constexpr double share = 0.2;
        const double height = room.height() * share;
        front.setBottom(room.bottom() - height - gap);
        QRectF strip(room.left(), front.bottom() + gap, room.width(), height);
        if (hasFold) {
            const QRectF symbol(strip.left(), strip.top(), sheets.Leaves().empty() ? strip.width() : height,
                                height);
            paintFold(painter, symbol, sheets, palette());
            strip.setLeft(symbol.right() + gap);
        }
        paintLeaves(painter, strip, sheets, size, palette());
    }
    if (sheets.sides == JobSheets::Sides::one) {
        paintSheet(painter, fitted(sheet, front), sheets, size, false, palette());
        return;
    }
    // The back lies beside or below the front, as it comes into sight when the sheet is turned.
    const bool isBeside = sheets.TurnEdge() == SheetEdge::left;
    const QSizeF both(sheet.width() * (isBeside ? 2.1 : 1), sheet.height() * (isBeside ? 1 : 2.1));
    const QRectF place = fitted(both, front);
    const QSizeF one = sheet * (place.width() / both.width());
    const QRectF back(QPointF(place.right() - one.width(), place.bottom() - one.height()), one);
    paintSheet(painter, QRectF(place.topLeft(), one), sheets, size, false, palette());
    paintSheet(painter, back, sheets, size, true, palette());
}

} // namespace torka
