#pragma once

#include <QColor>
#include <QList>
#include <QProgressBar>

namespace torka::jobproperties {

// A bar that shows how much of something is there, in the colours of the thing itself. What it shows is said
// beside it, so that nothing depends on colour.
class LevelGauge : public QProgressBar {
    Q_OBJECT
public:
    explicit LevelGauge(QWidget* parent = nullptr);

    // Percent; -1 when only its being there is known, which is drawn hatched.
    void SetLevel(int percent);
    // One band for each; none: the palette's highlight.
    void SetColors(const QList<QColor>& bands);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

    // "#rrggbb", several one after the other.
    static QList<QColor> ColorsFromText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<QColor> colors;
    bool isKnown = true;
};

} // namespace torka::jobproperties
