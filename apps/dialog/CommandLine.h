// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCommandLineParser>
#include <QCoreApplication>
#include <memory>

namespace torka::dialog {

// Makes the application object: one with windows, but one without when the only argument asks for the help or
// the version. These need no display. The arguments must outlive it.
std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv);

// Reads the command line of a program of ours with windows. Ends the program after --help and --version, and
// with status 2 for an option that it does not have. `helpEnd` follows the options in --help: an example, and
// the exit statuses. REQUIRES: an application object; `parser` with its help and version options.
void processCommandLine(QCommandLineParser& parser, const QString& helpEnd);

// Ends the program with status 2 and one line that says why.
[[noreturn]] void refuseCommandLine(const QString& reason);

} // namespace torka::dialog
