// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/CommandLine.h"

#include "apps/common/OutsideText.h"

#include <QCoreApplication>
#include <cstdio>
#include <cstdlib>

namespace torka::dialog {

void processCommandLine(QCommandLineParser& parser, const QString& helpEnd) {
    if (!parser.parse(QCoreApplication::arguments())) {
        std::fprintf(stderr, "%s: %s\n", qPrintable(QCoreApplication::applicationName()),
                     apps::printable(parser.errorText().toStdString()).c_str());
        std::exit(2);
    }
    if (parser.isSet(QStringLiteral("help"))) {
        std::fputs((parser.helpText() + QLatin1Char('\n') + helpEnd).toUtf8().constData(), stdout);
        std::exit(std::fflush(stdout) == 0 ? 0 : 2);
    }
    parser.process(*QCoreApplication::instance());
}

} // namespace torka::dialog
