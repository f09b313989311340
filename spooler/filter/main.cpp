// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/SpoolerCommands.h"
#include "platform/SecretMemory.h"
#include "platform/System.h"
#include "platform/adapters/Adapters.h"
#include "spooler/filter/Commands.h"
#include "spooler/filter/Confinement.h"
#include "spooler/filter/LiveSource.h"
#include "spooler/filter/PrintJob.h"
#include "spooler/filter/PrivateFolder.h"
#include "spooler/filter/ServerMessages.h"
#include "spooler/filter/Supervision.h"
#include "spooler/filter/TicketStore.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <vector>

// The queue's filter. The print server calls it for each document of the type application/vnd.cups-postscript
// and for each command job. docs/spooler-filter.md describes it.

namespace {

using namespace torka;
using filter::FilterJob;

int runCommandJob(const FilterJob& job, int source) {
    const std::size_t limit = filter::maximumCommandText(job.title);
    std::vector<char, platform::WipingAllocator<char>> text; // it may hold a password
    std::array<char, 65536> block{};
    const platform::WipeGuard guard(block);
    // One byte beyond the limit is enough to refuse the text.
    while (text.size() <= limit) {
        const ssize_t count = ::read(source, block.data(), block.size());
        if (count == 0) {
            break;
        }
        if (count < 0 && errno != EINTR) {
            filter::tellError("The command cannot be read: " + std::generic_category().message(errno) + ".");
            return 1;
        }
        text.insert(text.end(), block.begin(), block.begin() + std::max<ssize_t>(count, 0));
    }
    filter::FolderSource stored(platform::system().Resolve(filter::controllersFolder));
    const char* ppd = std::getenv("PPD");
    filter::LiveSource controllers(stored, job.deviceUri, ppd == nullptr ? "" : ppd,
                                   filter::liveAsking(job.queue, job.deviceUri));
    return filter::runCommand(job, {text.data(), text.size()}, controllers);
}

// Only a request needs a network: it asks the queue's printer.
filter::Network networkOf(const FilterJob& job) {
    const std::optional<SpoolerCommand> command =
        job.IsCommand() ? commandFromTitle(job.title) : std::nullopt;
    const bool isRequest = command == SpoolerCommand::updateCommands ||
                           command == SpoolerCommand::getServerData || command == SpoolerCommand::allBidi;
    return isRequest ? filter::Network::allowed : filter::Network::none;
}

int runJob(const FilterJob& job) {
    for (const std::string& problem : filter::confine(networkOf(job))) {
        filter::tellDebug(problem);
    }
    platform::AdapterOptions adapters{.network = true};
    adapters.system.userName = job.user; // the sign-in name of a job, where the description asks for one
    platform::chooseAdapters(std::move(adapters));

    const filter::OpenFile file(job.file.empty() ? -1 : ::open(job.file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!job.file.empty() && !file) {
        filter::tellError("The job's file cannot be opened: " + std::generic_category().message(errno) + ".");
        return 1;
    }
    const int source = file ? file.Descriptor() : STDIN_FILENO;
    const int status =
        job.IsCommand() ? runCommandJob(job, source) : filter::printJob(job, source, STDOUT_FILENO);
    if (status != 0) {
        filter::waitUntilRead();
    }
    return status;
}

int run(int argc, char** argv) {
    // A job has five arguments at least.
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        return std::puts("torkafilter " TORKA_VERSION) < 0 || std::fflush(stdout) != 0 ? 1 : 0;
    }
    const std::optional<FilterJob> job = filter::readFilterJob(argc, argv);
    if (!job) {
        filter::tellError("Usage: torkafilter JOB USER TITLE COPIES OPTIONS [FILE]");
        return 1;
    }
    return filter::supervise([&job] { return runJob(*job); });
}

// Needs no memory.
int failed(const char* reason) noexcept {
    std::fprintf(stderr,
                 "\n%s: The filter stopped: %s. What reached the printer may not be complete. Print the job "
                 "again.\n",
                 "ERROR", reason);
    filter::waitUntilRead();
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    ::umask(077);
    try {
        return run(argc, argv);
    } catch (const std::bad_alloc&) {
        return failed("not enough memory");
    } catch (const std::length_error&) { // a text longer than any memory
        return failed("not enough memory");
    } catch (const std::exception&) { // its text could hold a part of the job
        return failed("a library of the system fails");
    }
}
