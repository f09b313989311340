// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QRectF>

class QPainter;

namespace torka::jobproperties {

enum class Glyph { Lock, Undo };

// Draws the sign into the square, in one colour, sharp at every scale.
void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& square, const QColor& color);

// A button with a sign of the font's height, in the palette's text colour. It accepts the keyboard focus.
class GlyphButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit GlyphButton(Glyph glyph, QWidget* parent = nullptr);
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Glyph glyph;
};

} // namespace torka::jobproperties
