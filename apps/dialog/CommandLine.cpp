// SPDX-License-Identifier: Apache-2.0
#include "apps/dialog/CommandLine.h"

#include "apps/common/OutsideText.h"

#include <QApplication>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace torka::dialog {

std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) {
    using namespace std::string_view_literals;
    constexpr std::array texts{"-h"sv, "--help"sv, "--help-all"sv, "-v"sv, "--version"sv};
    if (argc == 2 && std::ranges::find(texts, argv[1]) != texts.end()) {
        return std::make_unique<QCoreApplication>(argc, argv);
    }
    return std::make_unique<QApplication>(argc, argv);
}

void refuseCommandLine(const QString& reason) {
    std::fprintf(stderr, "%s: %s\n", qPrintable(QCoreApplication::applicationName()),
                 apps::printable(reason.toStdString()).c_str());
    std::exit(2);
}

void processCommandLine(QCommandLineParser& parser, const QString& helpEnd) {
    if (!parser.parse(QCoreApplication::arguments())) {
        refuseCommandLine(parser.errorText());
    }
    if (parser.isSet(QStringLiteral("help"))) {
        std::fputs((parser.helpText() + QLatin1Char('\n') + helpEnd).toUtf8().constData(), stdout);
        std::exit(std::fflush(stdout) == 0 ? 0 : 2);
    }
    parser.process(*QCoreApplication::instance());
}

} // namespace torka::dialog
