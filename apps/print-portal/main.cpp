// SPDX-License-Identifier: Apache-2.0
#include "apps/common/OutsideText.h"
#include "apps/dialog/CommandLine.h"
#include "apps/dialog/PaneBundle.h"
#include "apps/dialog/ToolkitTexts.h"
#include "apps/print-portal/PrintService.h"
#include "platform/SecretMemory.h"
#include "platform/adapters/Adapters.h"
#include "platform/posix/InstalledSystem.h"
#include <PrintAdaptor.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusError>
#include <cstdio>
#include <exception>

namespace {

using namespace torka;

constexpr QLatin1String busName("org.freedesktop.impl.portal.desktop.torka");
constexpr QLatin1String objectPath("/org/freedesktop/portal/desktop");

int unusable(const QString& text) {
    std::fprintf(stderr, "torka-print-portal: %s\n", apps::printable(text.toStdString()).c_str());
    return 2;
}

QString defaultBundle() {
    return QString::fromStdString(
        platform::installedBundle(QCoreApplication::applicationDirPath().toStdString()).string());
}

// The plug-in that brings the pane into other programs has no place here: the dialog has it already.
void leaveOutOwnPlugIn() {
    QByteArrayList plugIns = qgetenv("QT_QPA_GENERIC_PLUGINS").split(',');
    plugIns.removeAll("torka");
    qputenv("QT_QPA_GENERIC_PLUGINS", plugIns.join(','));
}

constexpr int longestIdle = 86400; // seconds

struct Arguments {
    QString bundle;
    int idleSeconds = 60;
    bool replaces = false;
};

Arguments readArguments() {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Shows the print dialog to programs that print through the desktop portal."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption bundle(QStringLiteral("bundle"),
                                    QStringLiteral("Plug-in bundle to load; otherwise the installed one."),
                                    QStringLiteral("FOLDER"), defaultBundle());
    const QCommandLineOption idle(QStringLiteral("idle"),
                                  QStringLiteral("End after so long without a window; default 60, 0 never."),
                                  QStringLiteral("SECONDS"), QStringLiteral("60"));
    const QCommandLineOption replace(QStringLiteral("replace"),
                                     QStringLiteral("Take the name on the bus from a running service."));
    parser.addOptions({bundle, idle, replace});
    dialog::processCommandLine(
        parser,
        QStringLiteral("Example:\n  torka-print-portal --replace --idle 0\n\n"
                       "Exit status: 0 success, 2 when the command line or the bus cannot be used.\n"));
    bool isNumber = false;
    const int seconds = parser.value(idle).toInt(&isNumber);
    if (const QStringList more = parser.positionalArguments(); !more.isEmpty()) {
        dialog::refuseCommandLine(QStringLiteral("unexpected argument '%1'").arg(more.constFirst()));
    }
    if (!isNumber || seconds < 0 || seconds > longestIdle) {
        dialog::refuseCommandLine(QStringLiteral("--idle takes seconds from 0 to %1, not '%2'")
                                      .arg(QString::number(longestIdle), parser.value(idle)));
    }
    return {parser.value(bundle), seconds, parser.isSet(replace)};
}

int run(int argc, char** argv) {
    platform::protectProcess();
    leaveOutOwnPlugIn();
    QCoreApplication::setApplicationName(QStringLiteral("torka-print-portal"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TORKA_VERSION));
    const auto application = dialog::makeApplication(argc, argv);
    const Arguments arguments = readArguments();
    QApplication::setQuitOnLastWindowClosed(false);
    chooseAdapters({.spooler = true});
    dialog::loadToolkitTexts();

    const auto pane = dialog::loadPaneBundle(arguments.bundle.toStdString());
    if (!pane) {
        return unusable(QStringLiteral("%1 cannot be loaded: %2")
                            .arg(arguments.bundle, QString::fromStdString(pane.Why().Line())));
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return unusable(QStringLiteral("no session bus: %1").arg(bus.lastError().message()));
    }
    portal::PrintService service(*pane->plugIn);
    new PrintAdaptor(&service); // belongs to the service
    if (!bus.registerObject(objectPath, &service, QDBusConnection::ExportAdaptors)) {
        return unusable(QStringLiteral("the object cannot be offered on the bus"));
    }
    const auto owned =
        bus.interface()->registerService(busName,
                                         arguments.replaces ? QDBusConnectionInterface::ReplaceExistingService
                                                            : QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::AllowReplacement);
    if (!owned.isValid() || owned.value() != QDBusConnectionInterface::ServiceRegistered) {
        return unusable(QStringLiteral("another service has the name %1").arg(busName));
    }
    QObject::connect(&service, &portal::PrintService::idle, application.get(), [&] {
        // A call that has come meanwhile is served first. Without the name, the bus starts a new service for
        // the next one.
        bus.interface()->unregisterService(busName);
        QCoreApplication::processEvents();
        if (!service.IsBusy()) {
            QCoreApplication::quit();
        } else {
            bus.interface()->registerService(busName, QDBusConnectionInterface::DontQueueService,
                                             QDBusConnectionInterface::AllowReplacement);
        }
    });
    QObject::connect(bus.interface(), &QDBusConnectionInterface::serviceUnregistered, application.get(),
                     [&](const QString& name) {
                         if (name == busName && bus.interface()->serviceOwner(busName) != bus.baseService()) {
                             service.EndAfter(std::chrono::seconds(1)); // replaced; what is open goes on
                         }
                     });
    if (arguments.idleSeconds > 0) {
        service.EndAfter(std::chrono::seconds(arguments.idleSeconds));
    }
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "torka-print-portal: %s\n", error.what());
        return 2;
    }
}
