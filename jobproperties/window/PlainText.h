// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <string>

// Texts of descriptions and servers may look like markup.

namespace torka::jobproperties {

inline QString shown(const std::string& text) { return QString::fromStdString(text); }

// Makes a tool tip that shows the text literally: the toolkit guesses the format of a tip.
inline QString plainToolTip(const QString& plain) {
    return plain.isEmpty()
               ? QString()
               : QStringLiteral("<p>") + plain.toHtmlEscaped().replace(QChar(u'\n'), QStringLiteral("<br>")) +
                     QStringLiteral("</p>");
}

} // namespace torka::jobproperties
