// SPDX-License-Identifier: Apache-2.0
#include "pane/views/WatermarkPreview.h"

#include "pane/panel/TorkaFeaturesPDE.h"
#include "pane/presentation/WatermarkEditing.h"
#include "pane/views/SheetPainter.h"

#include <QPainter>

#include <utility>

namespace torka {

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
    setAccessibleName(context.Say(words::watermarkPreview,
                                  fields ? qText(fields->text) : context.Say(words::watermarkNone)));
    missing.clear();
    if (fields) {
        PrintedWatermark printed = printedWatermark(context.texts, *fields);
        fields->text = std::move(printed.shown);
        missing = qText(printed.missing);
    }
    setPlainToolTip(*this, missing);
    setAccessibleDescription(missing);
    update();
}

void WatermarkPreview::TakePaper() {
    const JobSheets sheets = jobSheets(context.editor, context.data,
                                       context.panel == nullptr ? nullptr : context.panel->currentPrinter());
    paper = paperSize(sheets.paper, sheets.size, context.texts.language.metric);
    if (sheets.isLandscape) {
        paper.transpose();
    }
    update();
}

QRectF WatermarkPreview::PageRect() const {
    constexpr double shadow = 4;
    return fitted(paper, QRectF(rect()).adjusted(shadow, shadow, -shadow, -shadow));
}

void WatermarkPreview::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF page = PageRect();
    paintPaper(painter, page, palette(), Qt::white);
    paintPage(painter, page, {paper, fields ? &*fields : nullptr});
}

} // namespace torka
