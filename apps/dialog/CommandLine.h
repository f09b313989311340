// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCommandLineParser>

namespace torka::dialog {

// Reads the command line of a program of ours with windows. Ends the program after --help and --version, and
// with status 2 for an option that it does not have. `helpEnd` follows the options in --help: an example, and
// the exit statuses. REQUIRES: an application object; `parser` with its help and version options.
void processCommandLine(QCommandLineParser& parser, const QString& helpEnd);

} // namespace torka::dialog
