// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "pane/presentation/JobSheets.h"
#include "pane/views/PaneContext.h"

#include <QTimer>
#include <QWidget>

namespace torka {

// The sheets of the job as they leave the printer, and what they are in words. Changes that come together are
// drawn once.
class JobPicture final : public QWidget {
public:
    explicit JobPicture(PaneContext& paneContext, QWidget* parent);
    // Follows the settings with the next pass of the event loop. Does nothing while the picture is hidden.
    void Follow();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void TakeSettings();
    void PaintSheets(QPainter& painter, const QRectF& room) const;

    PaneContext& context;
    JobSheets sheets;
    QString sentences;
    QTimer pending;
};

} // namespace torka
