// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

// Texts of descriptions and servers may look like markup.

namespace torka::jobproperties {

// Makes a tool tip that shows the text literally: the toolkit guesses the format of a tip.
inline QString plainToolTip(const QString& plain) {
    return plain.isEmpty()
               ? QString()
               : QStringLiteral("<p>") + plain.toHtmlEscaped().replace(QChar(u'\n'), QStringLiteral("<br>")) +
                     QStringLiteral("</p>");
}

} // namespace torka::jobproperties
