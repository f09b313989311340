// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QList>
#include <QProgressBar>

namespace torka::jobproperties {

// A bar that shows a level in the colours of the supply. A text beside it gives the same information, so that
// nothing depends on colour alone.
class LevelGauge : public QProgressBar {
    Q_OBJECT
public:
    explicit LevelGauge(QWidget* parent = nullptr);

    // Takes percent; -1 for a supply that is present at an unknown level, drawn hatched.
    void SetLevel(int percent);
    // Draws one band for each colour; none: the palette's highlight.
    void SetColors(const QList<QColor>& bands);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    // Reads "#rrggbb", one or more without a separator.
    static QList<QColor> ColorsFromText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<QColor> colors;
    bool isKnown = true;
};

} // namespace torka::jobproperties
