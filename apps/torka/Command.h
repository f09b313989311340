// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/common/OutsideText.h"
#include "platform/Result.h"

#include <CLI/App.hpp>

#include <string>
#include <string_view>

// Shared by the commands of the tool: exit status, error lines, output.

namespace torka::tool {

enum class ExitStatus {
    good = 0,
    findings = 1, // the command worked and found something to correct
    unusable = 2  // the input cannot be used; one line on standard error gives the reason
};

// Writes one line to standard error, "torka: WHAT". Returns `unusable`.
ExitStatus unusable(std::string_view what);
ExitStatus unusable(const Fault& why);
// Writes one line in the same form, for a command that continues.
void warn(std::string_view what);
// Writes text to standard output. outputFailed reports a failure (a full disk, a closed pipe).
void print(std::string_view text);
bool outputFailed();
// Every text from outside passes through it before it is printed.
using apps::printable;

// Each function adds one subcommand. `status` receives the result when the command has run.
void addShowCommand(CLI::App& app, ExitStatus& status);
void addLintCommand(CLI::App& app, ExitStatus& status);
void addDiffCommand(CLI::App& app, ExitStatus& status);
void addCheckCommand(CLI::App& app, ExitStatus& status);
void addEmitCommand(CLI::App& app, ExitStatus& status);
void addTicketCommand(CLI::App& app, ExitStatus& status);
void addNotesCommand(CLI::App& app, ExitStatus& status);
void addPingCommand(CLI::App& app, ExitStatus& status);
void addAddressCommand(CLI::App& app, ExitStatus& status);
void addDiscoverCommand(CLI::App& address, ExitStatus& status); // of the command "address"
void addPrintCommand(CLI::App& app, ExitStatus& status);
void addCommandCommand(CLI::App& app, ExitStatus& status);
void addQueueCommand(CLI::App& app, ExitStatus& status);
void addQueueListCommand(CLI::App& queue, ExitStatus& status); // of the command "queue"
void addQueueAddCommand(CLI::App& queue, ExitStatus& status);
void addQueueRemoveCommand(CLI::App& queue, ExitStatus& status);
void addQueueCheckCommand(CLI::App& queue, ExitStatus& status);
void addRecordCommand(CLI::App& app, ExitStatus& status);
void addSettingsCommand(CLI::App& app, ExitStatus& status);
void addModuleCommand(CLI::App& app, ExitStatus& status);
void addServerDataCommand(CLI::App& app, ExitStatus& status);
void addSetupCommand(CLI::App& app, ExitStatus& status);
void addManualCommand(CLI::App& app, ExitStatus& status);   // hidden
void addCompleteCommand(CLI::App& app, ExitStatus& status); // hidden

} // namespace torka::tool
