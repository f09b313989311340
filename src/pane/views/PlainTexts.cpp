// SPDX-License-Identifier: Apache-2.0
#include "pane/views/PlainTexts.h"

#include <QLabel>
#include <QWidget>

namespace torka {

QString qText(const CFStringRef& text) { return text ? QString::fromStdU16String(text->units) : QString(); }

CFStringRef cfText(const QString& text) { return CFStringCreateWithCharacters(text.toStdU16String()); }

QString labelText(const QString& plain) {
    return QString(plain).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString plainToolTip(const QString& plain) {
    return plain.isEmpty() ? QString()
                           : QLatin1String("<p>") +
                                 plain.toHtmlEscaped().replace(QLatin1Char('\n'), QLatin1String("<br>")) +
                                 QLatin1String("</p>");
}

void setPlainToolTip(QWidget& widget, const QString& plain) {
    widget.setToolTip(plainToolTip(plain));
    widget.setAccessibleDescription(plain);
}

void alignLeading(QLabel& label) {
    label.setAlignment((label.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute |
                       Qt::AlignVCenter);
}

} // namespace torka
