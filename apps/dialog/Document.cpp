// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/Document.h"
#include "apps/dialog/Said.h"

#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>

namespace torka::dialog {

bool openDocument(const QString& path, Document& document, QString& error) {
    const QFileInfo info(path);
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly)) {
        const QString reason = !info.exists()  ? said("no such file")
                               : info.isFile() ? file.errorString()
                                               : said("not a file");
        error = said("%1 cannot be read: %2").arg(path, reason);
        return false;
    }
    const QMimeType type = QMimeDatabase().mimeTypeForData(&file);
    const bool isKnown = type.inherits(QStringLiteral("application/pdf")) ||
                         type.inherits(QStringLiteral("application/postscript")) ||
                         type.name().startsWith(QLatin1String("image/"));
    if (!isKnown) {
        error = said("%1 is neither PDF nor PostScript nor an image, but %2.").arg(path, type.name());
        return false;
    }
    document = {info.absoluteFilePath(), info.fileName()};
    return true;
}

} // namespace torka::dialog
