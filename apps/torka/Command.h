#pragma once

#include <CLI/App.hpp>

#include <string>
#include <string_view>

// What the commands of the tool share: exit status, error lines, output.

namespace torka::tool {

enum class ExitStatus {
    good = 0,
    findings = 1, // the command worked and found something to mend
    unusable = 2  // the input cannot be worked with; standard error says why in one line
};

// One line on standard error: "torka: WHAT". Always answers `unusable`.
ExitStatus unusable(std::string_view what);
// One line on standard error that does not end the command.
void warn(std::string_view what);
// Writes text to standard output; a failure to do so (a full disk, a closed pipe) is remembered for
// outputFailed.
void print(std::string_view text);
bool outputFailed();
// Control characters made visible, so that text from a file cannot steer the terminal.
std::string printable(std::string_view text);

// Each adds its subcommand; `status` gets the result when the command ran.
void addShowCommand(CLI::App& app, ExitStatus& status);
void addLintCommand(CLI::App& app, ExitStatus& status);
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
void addRecordCommand(CLI::App& app, ExitStatus& status);
void addModuleCommand(CLI::App& app, ExitStatus& status);
void addServerDataCommand(CLI::App& app, ExitStatus& status);

} // namespace torka::tool
