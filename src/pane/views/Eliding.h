// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QToolButton>

// Buttons for texts of a description, which may have any length. They never widen a page. A cut text is shown
// whole in the tooltip.

namespace torka {

class ElidingCheckBox final : public QCheckBox {
public:
    ElidingCheckBox(const QString& plainText, QWidget* parent);
    QSize minimumSizeHint() const override;

protected:
    void initStyleOption(QStyleOptionButton* option) const override;
    bool event(QEvent* event) override;

private:
    QString plain;
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
};

} // namespace torka
