// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/ToolkitTexts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace torka::dialog {

void loadToolkitTexts() {
    auto* texts = new QTranslator(QCoreApplication::instance());
    if (texts->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(texts);
    }
}

} // namespace torka::dialog
