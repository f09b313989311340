// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/window/OwnTexts.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>
#include <QXmlStreamReader>

#include <dlfcn.h>
#include <utility>

namespace torka::jobproperties {

namespace {

constexpr qint64 maximumBytes = qint64{4} * 1024 * 1024;

using Table = QHash<QString, QString>; // by the English text

class TableTranslator final : public QTranslator {
public:
    TableTranslator(Table texts, QObject* parent)
        : QTranslator(parent)
        , table(std::move(texts)) {}
    QString translate(const char* context, const char* source, const char* /*disambiguation*/,
                      int /*number*/) const override {
        return QByteArrayView(context).startsWith("torka") ? table.value(QString::fromUtf8(source))
                                                           : QString();
    }
    bool isEmpty() const override { return table.isEmpty(); }

private:
    Table table;
};

// Reads the keys and texts of a property list's dictionary.
Table readTable(const QString& path) {
    Table table;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || file.size() > maximumBytes) {
        return table;
    }
    QXmlStreamReader reader(&file);
    QString key;
    while (!reader.atEnd()) {
        if (reader.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (reader.name() == QLatin1String("key")) {
            key = reader.readElementText();
        } else if (reader.name() == QLatin1String("string")) {
            table.insert(key, reader.readElementText());
        }
    }
    return table;
}

// The table of the first language that the bundle has.
Table personsTable() {
    Dl_info place{};
    if (dladdr(reinterpret_cast<const void*>(&loadOwnTexts), &place) == 0 || place.dli_fname == nullptr) {
        return {};
    }
    const QString resources = QFileInfo(QFile::decodeName(place.dli_fname)).absolutePath() +
                              QStringLiteral("/TorkaFeatures.bundle/Contents/Resources/");
    const QStringList languages = QLocale::system().uiLanguages();
    for (QString language : languages) {
        language.replace(QLatin1Char('-'), QLatin1Char('_'));
        const QString path = resources + language + QStringLiteral(".lproj/Windows.strings");
        if (language.section(QLatin1Char('_'), 0, 0) == QLatin1String("en")) {
            return {};
        }
        if (QFileInfo::exists(path)) {
            return readTable(path);
        }
    }
    return {};
}

} // namespace

void loadOwnTexts() {
    QCoreApplication* application = QCoreApplication::instance();
    auto* ofTheToolkit = new QTranslator(application);
    if (ofTheToolkit->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                           QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(ofTheToolkit);
    }
    QCoreApplication::installTranslator(new TableTranslator(personsTable(), application));
}

} // namespace torka::jobproperties
