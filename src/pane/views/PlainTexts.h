// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <QString>

#include <string_view>

class QLabel;
class QWidget;

// Texts in widgets, always as plain text.

namespace torka {

inline QString qText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// Where items of lists and trees keep the keyword of their option.
inline constexpr int keywordRole = Qt::UserRole;

// Conversions between the strings of the toolkit and of the panel. "" for null.
QString qText(const CFStringRef& text);
CFStringRef cfText(const QString& text);

// Text for labels, check boxes, buttons and group headers, where "&" marks a shortcut.
QString labelText(const QString& plain);
// A wrapped tooltip that is never taken for markup; "" for none.
void setPlainToolTip(QWidget& widget, const QString& plain);
QString plainToolTip(const QString& plain);

// Aligns by the direction of the layout. By default a label aligns by the direction of its text.
void alignLeading(QLabel& label);

} // namespace torka
