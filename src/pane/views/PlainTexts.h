#pragma once

#include "platform/CoreFoundation.h"

#include <QString>

#include <string_view>

class QLabel;
class QWidget;

// Texts of the description in widgets, always as plain text.

namespace torka {

inline QString qText(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// Between the toolkit's strings and the panel's, which both hold UTF-16. "" for null.
QString qText(const CFStringRef& text);
CFStringRef cfText(const QString& text);

// For labels, check boxes, buttons and group headers, where "&" marks a shortcut.
QString labelText(const QString& plain);
// Tooltips guess whether they hold markup; this one is always plain text, wrapped. "" for none.
void setPlainToolTip(QWidget& widget, const QString& plain);
QString plainToolTip(const QString& plain);

// Aligns by the layout's direction; a label goes by that of its text otherwise.
void alignLeading(QLabel& label);

} // namespace torka
