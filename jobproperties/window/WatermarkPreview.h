// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "jobproperties/core/Watermark.h"

#include <QWidget>

namespace torka::jobproperties {

// A sheet of A4 with the watermark on it, scaled to the available room. The sheet is white in any palette.
class WatermarkPreview : public QWidget {
    Q_OBJECT
public:
    explicit WatermarkPreview(QWidget* parent = nullptr);
    void Show(const Watermark* watermark); // null: an empty sheet
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Watermark watermark;
    bool isEmpty = true;
};

} // namespace torka::jobproperties
