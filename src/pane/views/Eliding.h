#pragma once

#include <QCheckBox>
#include <QToolButton>

// Buttons whose text comes from a description and may be of any length: they never make a page wider than it
// is, and show the whole text as a tooltip where it was cut.

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
