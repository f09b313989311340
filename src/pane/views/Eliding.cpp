// SPDX-License-Identifier: Apache-2.0
#include "pane/views/Eliding.h"

#include "pane/views/PlainTexts.h"
#include "platform/qt/LetterWidth.h"

#include <QHelpEvent>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionToolButton>
#include <QToolTip>

#include <algorithm>

namespace torka {
namespace {

constexpr int minimumCharacters = 8;

QString elided(const QWidget& widget, const QString& plain, int width) {
    return labelText(widget.fontMetrics().elidedText(plain, Qt::ElideRight, width));
}

// A tooltip of the widget takes precedence over the full text.
bool showWhole(QEvent* event, const QWidget& widget, const QString& plain, int width) {
    if (event->type() != QEvent::ToolTip || !widget.toolTip().isEmpty() ||
        widget.fontMetrics().horizontalAdvance(plain) <= width) {
        return false;
    }
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), plainToolTip(plain));
    return true;
}

int checkTextWidth(const QCheckBox& box) {
    const QStyle& style = *box.style();
    return box.width() - style.pixelMetric(QStyle::PM_IndicatorWidth) -
           style.pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
}

} // namespace

int PlainWidth::Of(const QString& text, const QWidget& widget) const {
    if (width < 0 || widget.font() != measuredFont) {
        measuredFont = widget.font();
        width = widget.fontMetrics().horizontalAdvance(text);
    }
    return width;
}

ElidingCheckBox::ElidingCheckBox(const QString& plainText, QWidget* parent)
    : QCheckBox(labelText(plainText), parent)
    , plain(plainText) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize ElidingCheckBox::minimumSizeHint() const {
    QSize least = QCheckBox::minimumSizeHint();
    least.setWidth(std::min(least.width(), letterWidth(fontMetrics()) * minimumCharacters));
    return least;
}

void ElidingCheckBox::initStyleOption(QStyleOptionButton* option) const {
    QCheckBox::initStyleOption(option);
    if (plainWidth.Of(plain, *this) > checkTextWidth(*this)) {
        option->text = elided(*this, plain, checkTextWidth(*this));
    }
}

bool ElidingCheckBox::event(QEvent* event) {
    return showWhole(event, *this, plain, checkTextWidth(*this)) || QCheckBox::event(event);
}

ElidingToolButton::ElidingToolButton(const QString& plainText, QWidget* parent)
    : QToolButton(parent)
    , plain(plainText) {
    setText(labelText(plainText));
    setAccessibleName(plainText);
}

int ElidingToolButton::TextWidth() const {
    return width() - iconSize().width() - 4 * style()->pixelMetric(QStyle::PM_ButtonMargin);
}

QSize ElidingToolButton::minimumSizeHint() const {
    QSize least = QToolButton::minimumSizeHint();
    least.setWidth(std::min(least.width(), letterWidth(fontMetrics()) * minimumCharacters));
    return least;
}

void ElidingToolButton::initStyleOption(QStyleOptionToolButton* option) const {
    QToolButton::initStyleOption(option);
    if (plainWidth.Of(plain, *this) > TextWidth()) {
        option->text = elided(*this, plain, TextWidth());
    }
}

bool ElidingToolButton::event(QEvent* event) {
    return showWhole(event, *this, plain, TextWidth()) || QToolButton::event(event);
}

} // namespace torka
