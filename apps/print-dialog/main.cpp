// SPDX-License-Identifier: Apache-2.0
#include "apps/common/OutsideText.h"
#include "apps/dialog/CommandLine.h"
#include "apps/dialog/Document.h"
#include "apps/dialog/PaneBundle.h"
#include "apps/dialog/PrintDialog.h"
#include "apps/dialog/Said.h"
#include "apps/dialog/ToolkitTexts.h"
#include "apps/print-dialog/Pictures.h"
#include "apps/print-dialog/PrintRun.h"
#include "platform/SecretMemory.h"
#include "platform/adapters/Adapters.h"
#include "platform/cups/CupsQueue.h"
#include "platform/posix/InstalledSystem.h"

#include <QCommandLineParser>
#include <QPrinter>
#include <cstdio>
#include <exception>

namespace {

using namespace torka;

QString defaultBundle() {
    return QString::fromStdString(
        platform::installedBundle(QCoreApplication::applicationDirPath().toStdString()).string());
}

int unusable(const QString& text) {
    std::fprintf(stderr, "torka-print-dialog: %s\n", apps::printable(text.toStdString()).c_str());
    return 2;
}

struct Arguments {
    QString document;
    QString queue;
    QString bundle;
    QString pictures;
};

Arguments readArguments() {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Prints a document through a print dialog with the printer's features."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption queue({QStringLiteral("d"), QStringLiteral("queue")},
                                   QStringLiteral("Queue to begin with; otherwise the default queue."),
                                   QStringLiteral("QUEUE"));
    const QCommandLineOption bundle(QStringLiteral("bundle"),
                                    QStringLiteral("Plug-in bundle to load; otherwise the installed one."),
                                    QStringLiteral("FOLDER"), defaultBundle());
    const QCommandLineOption pictures(QStringLiteral("pictures"),
                                      QStringLiteral("Write pictures of the pane there, print nothing."),
                                      QStringLiteral("FOLDER"));
    parser.addOptions({queue, bundle, pictures});
    parser.addPositionalArgument(QStringLiteral("FILE"),
                                 QStringLiteral("Document: PDF, PostScript or an image."));
    dialog::processCommandLine(
        parser,
        QStringLiteral("Example:\n  torka-print-dialog -d office samples/brochure.ps\n\n"
                       "Exit status: 0 success, 1 failed job, 2 unusable input, 3 dialog cancelled.\n"));
    const QStringList files = parser.positionalArguments();
    if (files.size() != 1) {
        dialog::refuseCommandLine(files.isEmpty() ? QStringLiteral("name the document to print")
                                                  : QStringLiteral("unexpected argument '%1'").arg(files[1]));
    }
    return {files.constFirst(), parser.value(queue), parser.value(bundle), parser.value(pictures)};
}

int run(int argc, char** argv) {
    platform::protectProcess();
    QCoreApplication::setApplicationName(QStringLiteral("torka-print-dialog"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TORKA_VERSION));
    const auto application = dialog::makeApplication(argc, argv);
    const Arguments arguments = readArguments();
    dialog::loadToolkitTexts();
    AdapterOptions adapters{.spooler = true};
    chooseAdapters(std::move(adapters));

    const auto pane = dialog::loadPaneBundle(arguments.bundle.toStdString());
    if (!pane) {
        return unusable(QStringLiteral("%1 cannot be loaded: %2")
                            .arg(arguments.bundle, QString::fromStdString(pane.Why().Line())));
    }
    dialog::Document document;
    QString error;
    if (!dialog::openDocument(arguments.document, document, error)) {
        return unusable(error);
    }
    QPrinter printer;
    if (!arguments.queue.isEmpty()) {
        // A pane of the default queue, shown for a moment, would hand its settings on.
        printer.setPrinterName(arguments.queue);
    }
    dialog::PrintDialog dialog(printer, *pane->plugIn, document.name.toStdString());
    if (!arguments.queue.isEmpty() && !dialog.chooseQueue(arguments.queue.toStdString())) {
        const std::string reason = platform::queueProblem(arguments.queue.toStdString());
        return unusable(reason.empty()
                            ? QCoreApplication::translate("torka", "the dialog does not list the queue %1")
                                  .arg(arguments.queue)
                            : dialog::saidMessage(reason));
    }
    dialog.showPane();
    if (!arguments.pictures.isEmpty()) {
        return dialog::takePictures(dialog, arguments.pictures, error) ? 0 : unusable(error);
    }
    return dialog::runDialog(document, dialog);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "torka-print-dialog: %s\n", error.what());
        return 2;
    }
}
