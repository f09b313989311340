// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/WatermarkFields.h"
#include "pane/views/PaneContext.h"

#include <QSizeF>
#include <QWidget>

#include <optional>

namespace torka {

// The chosen paper, upright for the reader, with the watermark where the job prints it. The paper is white in
// every palette.
class WatermarkPreview final : public QWidget {
public:
    explicit WatermarkPreview(PaneContext& paneContext, QWidget* parent = nullptr);
    // No fields: shows the page without watermark.
    void Show(std::optional<WatermarkFields> shown);
    // Names the characters that the printer's font lacks; "" for none. The preview draws "?" in their place.
    const QString& Missing() const { return missing; }
    // Reads the chosen paper and its orientation.
    void TakePaper();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF PageRect() const; // in the widget

    PaneContext& context;
    std::optional<WatermarkFields> fields; // with the text as it is printed
    QString missing;
    QSizeF paper; // points, upright for the reader
};

} // namespace torka
