// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/MemoryShortage.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/ManualTexts.h"
#include "platform/SecretMemory.h"
#include "platform/adapters/Adapters.h"
#include "platform/posix/PrivateFolders.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// The command-line tool. Its commands and their JSON are a public interface; docs/torka.md describes them.

namespace {

using namespace torka;
using tool::ExitStatus;

// Gives every command the option --version. A group of options has no name and is no command.
void tellVersion(CLI::App& command) {
    command.set_version_flag("--version", "torka " TORKA_VERSION, "Print the version and exit");
    for (CLI::App* inner : command.get_subcommands({})) {
        if (!inner->get_name().empty()) {
            tellVersion(*inner);
        }
    }
}

int run(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    platform::protectProcess();
    platform::removePrivateFolderOnSignals();
    platform::AdapterOptions adapters{.network = true, .libraries = true};
    platform::chooseAdapters(std::move(adapters));

    CLI::App app("Extended printer descriptions, job tickets and printing with them", "torka");
    app.require_subcommand(1);
    tool::describe(app, tool::generalText());
    ExitStatus status = ExitStatus::good;
    tool::addShowCommand(app, status);
    tool::addLintCommand(app, status);
    tool::addDiffCommand(app, status);
    tool::addCheckCommand(app, status);
    tool::addEmitCommand(app, status);
    tool::addTicketCommand(app, status);
    tool::addNotesCommand(app, status);
    tool::addPingCommand(app, status);
    tool::addAddressCommand(app, status);
    tool::addPrintCommand(app, status);
    tool::addCommandCommand(app, status);
    tool::addSettingsCommand(app, status);
    tool::addQueueCommand(app, status);
    tool::addRecordCommand(app, status);
    tool::addModuleCommand(app, status);
    tool::addServerDataCommand(app, status);
    tool::addSetupCommand(app, status);
    tool::addManualCommand(app, status);
    tool::addCompleteCommand(app, status);
    tellVersion(app);
    const auto misused = [](const CLI::Error& error) {
        return tool::unusable(std::string(error.what()) + " (torka --help tells the commands)");
    };
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        if (const std::vector<std::string> unknown = app.remaining(); !unknown.empty()) {
            status = misused(CLI::ExtrasError(unknown));
        } else {
            app.exit(help); // --help and --version: printed on standard output
        }
    } catch (const CLI::ParseError& error) {
        status = misused(error);
    }
    if (gMemoryShortages != 0 && status != ExitStatus::unusable) { // some name above is not the description's
        status = tool::unusable("not enough memory");
    }
    if (tool::outputFailed() && status != ExitStatus::unusable) {
        status = tool::unusable("standard output cannot be written");
    }
    return static_cast<int>(status);
}

int failed(const char* reason) noexcept {
    try {
        tool::unusable(reason);
    } catch (...) { // memory is what is missing
        std::fputs("torka: not enough memory\n", stderr);
    }
    return static_cast<int>(ExitStatus::unusable);
}

// Copies inside the JSON library may not throw, and a shortage of memory in them ends the program here.
[[noreturn]] void endWithoutMemory() noexcept {
    if (const std::exception_ptr error = std::current_exception()) {
        try {
            std::rethrow_exception(error);
        } catch (const std::bad_alloc&) {
            std::fputs("torka: not enough memory\n", stderr);
            platform::removeFolderOfProcess();
            std::_Exit(static_cast<int>(ExitStatus::unusable));
        } catch (...) { // a defect of the program: the system keeps its traces
        }
    }
    std::abort();
}

} // namespace

int main(int argc, char** argv) {
    std::set_terminate(endWithoutMemory);
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return failed("not enough memory");
    } catch (const std::length_error&) { // a text longer than any memory
        return failed("not enough memory");
    } catch (const std::exception& error) {
        return failed(error.what());
    } catch (...) {
        return failed("a library of the system fails without a reason");
    }
}
