#include "apps/torka/Command.h"
#include "platform/SecretMemory.h"
#include "platform/adapters/Adapters.h"
#include "platform/posix/PrivateFolders.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <csignal>
#include <utility>

// The command-line tool. Its commands and their JSON are a public interface; docs/torka.md describes them.

int main(int argc, char** argv) {
    using namespace torka;
    using tool::ExitStatus;

    std::signal(SIGPIPE, SIG_IGN);
    platform::protectProcess();
    platform::removePrivateFolderOnSignals();
    platform::AdapterOptions adapters{.network = true, .libraries = true};
    adapters.system.rootFromEnvironment = true;
    platform::chooseAdapters(std::move(adapters));

    CLI::App app("Extended printer descriptions, job tickets and what becomes of them in a PostScript job",
                 "torka");
    app.require_subcommand(1);
    app.footer("Exit status: 0 good, 1 findings, 2 unusable input.");
    ExitStatus status = ExitStatus::good;
    tool::addShowCommand(app, status);
    tool::addLintCommand(app, status);
    tool::addCheckCommand(app, status);
    tool::addEmitCommand(app, status);
    tool::addTicketCommand(app, status);
    tool::addNotesCommand(app, status);
    tool::addPingCommand(app, status);
    tool::addAddressCommand(app, status);
    tool::addPrintCommand(app, status);
    tool::addCommandCommand(app, status);
    tool::addQueueCommand(app, status);
    tool::addRecordCommand(app, status);
    tool::addModuleCommand(app, status);
    tool::addServerDataCommand(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& help) {
        app.exit(help); // --help: printed on standard output
    } catch (const CLI::ParseError& error) {
        status = tool::unusable(std::string(error.what()) + " (torka --help tells the commands)");
    }
    if (tool::outputFailed() && status != ExitStatus::unusable) {
        status = tool::unusable("standard output cannot be written");
    }
    return static_cast<int>(status);
}
