#include "spooler/filter/Supervision.h"

#include "spooler/filter/ServerMessages.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace torka::filter {

namespace {

// Standard input and output, and the channels that CUPS opens to the backend (filter(7)). While this process
// held them, the other filters would not notice the end of the working process.
constexpr int documentDescriptors[] = {STDIN_FILENO, STDOUT_FILENO, 3, 4};

int statusOf(pid_t worker) {
    int status = 0;
    while (::waitpid(worker, &status, 0) < 0) {
        if (errno != EINTR) {
            tellError("The filter lost sight of its own work: " + std::generic_category().message(errno) +
                      ".");
            return 1;
        }
    }
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    const int number = WTERMSIG(status);
    if (number == SIGTERM) {
        // A cancelled job's signal goes to both processes and may reach this one a moment later. It then ends
        // here.
        constexpr useconds_t moment = 500'000;
        ::usleep(moment);
    }
    tellError("The filter was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) +
              "): what reached the printer is not complete. Print the job again.");
    waitUntilRead();
    return 1;
}

} // namespace

int supervise(const std::function<int()>& work) {
    const pid_t supervisor = ::getpid();
    const pid_t worker = ::fork();
    if (worker < 0) {
        tellDebug("The filter works without supervision: " + std::generic_category().message(errno));
        return work();
    }
    if (worker == 0) {
        // Detects a supervisor that ended before the request took effect.
        if (::prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || ::getppid() != supervisor) {
            ::_exit(EXIT_FAILURE);
        }
        return work();
    }
    for (const int descriptor : documentDescriptors) {
        ::close(descriptor);
    }
    return statusOf(worker);
}

} // namespace torka::filter
