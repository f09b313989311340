#pragma once

#include "output/WatermarkFields.h"
#include "pane/views/PaneContext.h"

#include <QSizeF>
#include <QWidget>

#include <optional>

namespace torka {

// The chosen paper as it is read, with the watermark where the job will print it. The paper is white whatever
// the palette.
class WatermarkPreview final : public QWidget {
public:
    explicit WatermarkPreview(PaneContext& paneContext, QWidget* parent = nullptr);
    // Nothing: the bare page.
    void Show(std::optional<WatermarkFields> shown);
    // Takes up the chosen paper and orientation.
    void TakePaper();
    QSizeF Paper() const { return paper; } // points, as it is read
    // Where the page is drawn.
    QRectF PageRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void PaintText(QPainter& painter) const;

    PaneContext& context;
    std::optional<WatermarkFields> fields;
    QSizeF paper;
};

} // namespace torka
