#pragma once

#include <QString>

// Descriptions and servers give texts that may look like markup.

namespace torka::jobproperties {

// A tool tip that shows the text as it stands: the toolkit guesses the format of a tip.
inline QString plainToolTip(const QString& plain) {
    return plain.isEmpty()
               ? QString()
               : QStringLiteral("<p>") + plain.toHtmlEscaped().replace(QChar(u'\n'), QStringLiteral("<br>")) +
                     QStringLiteral("</p>");
}

} // namespace torka::jobproperties
