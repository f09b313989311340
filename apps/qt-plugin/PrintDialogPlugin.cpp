// SPDX-License-Identifier: Apache-2.0
#include "apps/qt-plugin/PrintDialogPlugin.h"

#include "apps/guest/Entry.h"

#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QLibrary>
#include <dlfcn.h>

namespace torka::plugin {

namespace {

// TORKA_DIALOG_FROM_PLUGIN, seen from the folder of this plug-in. Qt looks into that folder at every start,
// so nothing else lies there. No variable of the environment names another library.
QString pathOfDialogLibrary() {
    Dl_info place{};
    if (dladdr(reinterpret_cast<const void*>(&pathOfDialogLibrary), &place) == 0 ||
        place.dli_fname == nullptr) {
        return {};
    }
    const QFileInfo plugIn(QFile::decodeName(place.dli_fname));
    return QFileInfo(plugIn.canonicalPath() + QStringLiteral("/" TORKA_DIALOG_FROM_PLUGIN))
        .canonicalFilePath();
}

// Null, with a line in the log, when the library is missing or fits another Qt.
TorkaAttach loadDialogLibrary() {
    QLibrary library(pathOfDialogLibrary());
    library.setLoadHints(QLibrary::PreventUnloadHint | QLibrary::ResolveAllSymbolsHint);
    const auto attach = reinterpret_cast<TorkaAttach>(
        library.fileName().isEmpty() ? nullptr : library.resolve(torkaAttachName));
    if (attach == nullptr) {
        qWarning("torka: print dialogs have no pane: %s", library.fileName().isEmpty()
                                                              ? "libtorkadialog.so is missing"
                                                              : qPrintable(library.errorString()));
    }
    return attach;
}

} // namespace

QObject* PrintDialogPlugin::create(const QString& key, const QString&) {
    if (key.compare(QLatin1String("torka"), Qt::CaseInsensitive) != 0) {
        return nullptr;
    }
    auto* watcher = new DialogWatcher; // Qt deletes it with the application
    QCoreApplication::instance()->installEventFilter(watcher);
    return watcher;
}

bool DialogWatcher::eventFilter(QObject* watched, QEvent* event) {
    // Our own dialogs carry the property from their constructor on.
    if (event->type() == QEvent::Polish && watched->inherits("QPrintDialog") &&
        !watched->property("torkaPane").isValid()) {
        static const TorkaAttach attach = loadDialogLibrary();
        if (attach != nullptr) {
            attach(watched, torkaAttachVersion);
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace torka::plugin
