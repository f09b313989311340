// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/JobSheets.h"

#include <QPalette>
#include <QRectF>
#include <QSizeF>

class QPainter;

// The drawing of sheets of paper, for the picture of the job and the preview of watermarks. Paper is white in
// every palette.

namespace torka {

// The size of a paper in points, upright: `known`, else the standard size of that name, else A4 or Letter.
QSizeF paperSize(const std::string& name, const std::optional<PaperSize>& known, bool metric);

// The largest rectangle of the size's proportions in the middle of the room.
QRectF fitted(const QSizeF& size, const QRectF& room);

void paintPaper(QPainter& painter, const QRectF& rect, const QPalette& palette, const QColor& color);

struct PageLook {
    QSizeF size; // points, upright for the reader
    const WatermarkFields* watermark = nullptr;
    bool hasColor = false; // a coloured picture among the text
    bool isMirrored = false;
    int rotation = 0; // degrees, clockwise
    int number = 0;   // 0: not shown
};
// Fills the rectangle with a page: grey lines for text, and the watermark where the job prints it.
void paintPage(QPainter& painter, const QRectF& rect, const PageLook& look);

// The front or the back of the sheet, with its pages, staples, holes, folds, trim and binding.
void paintSheet(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QSizeF& size, bool back,
                const QPalette& palette);
// The folded sheet, seen from its edge.
void paintFold(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QPalette& palette);
// The leaves of the job in their order, from left to right.
void paintLeaves(QPainter& painter, const QRectF& rect, const JobSheets& sheets, const QSizeF& size,
                 const QPalette& palette);

} // namespace torka
