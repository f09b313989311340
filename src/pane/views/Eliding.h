// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QFont>
#include <QToolButton>

// Buttons for texts of a description, which may have any length. They never widen a page. A cut text is shown
// whole in the tooltip.

namespace torka {

// The width of a text in a font. Layouts and paintings ask for it often; it is measured once for each font.
class PlainWidth {
public:
    int Of(const QString& text, const QWidget& widget) const;

private:
    mutable QFont measuredFont;
    mutable int width = -1; // not measured
};

class ElidingCheckBox final : public QCheckBox {
public:
    ElidingCheckBox(const QString& plainText, QWidget* parent);
    QSize minimumSizeHint() const override;

protected:
    void initStyleOption(QStyleOptionButton* option) const override;
    bool event(QEvent* event) override;

private:
    QString plain;
    PlainWidth plainWidth;
};

class ElidingToolButton final : public QToolButton {
public:
    ElidingToolButton(const QString& plainText, QWidget* parent);
    QSize minimumSizeHint() const override;

protected:
    void initStyleOption(QStyleOptionToolButton* option) const override;
    bool event(QEvent* event) override;

private:
    int TextWidth() const;

    QString plain;
    PlainWidth plainWidth;
};

} // namespace torka
