// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Supervision.h"

#include "spooler/filter/ServerMessages.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
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

// A cancelled job's signal goes to both processes and may reach this one a moment later.
constexpr timespec secondLook{.tv_sec = 0, .tv_nsec = 500'000'000};

// SIGTERM and SIGCHLD wait until they are asked for.
class HeldSignals {
public:
    HeldSignals() {
        sigemptyset(&held);
        sigaddset(&held, SIGTERM);
        sigaddset(&held, SIGCHLD);
        ::sigprocmask(SIG_BLOCK, &held, &before);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() { Release(); }
    void Release() const { ::sigprocmask(SIG_SETMASK, &before, nullptr); }
    // The number of the next signal; 0 for none within the time.
    int Next(const timespec* limit = nullptr) const {
        int number = -1;
        while ((number = ::sigtimedwait(&held, nullptr, limit)) < 0 && errno == EINTR) {
        }
        return std::max(number, 0);
    }

private:
    sigset_t held{};
    sigset_t before{};
};

// Passes SIGTERM on to the worker, which first ends what it must not leave half done.
int statusOf(pid_t worker, const HeldSignals& signals) {
    bool isCancelled = false;
    int status = 0;
    while (::waitpid(worker, &status, WNOHANG) == 0) {
        if (signals.Next() == SIGTERM) {
            isCancelled = true;
            ::kill(worker, SIGTERM);
        }
    }
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status);
    }
    const int number = WTERMSIG(status);
    if (number == SIGTERM && (isCancelled || signals.Next(&secondLook) == SIGTERM)) {
        signals.Release();
        ::raise(SIGTERM);
    }
    tellError("The filter was ended by signal " + std::to_string(number) + " (" + ::strsignal(number) +
              "): what reached the printer is not complete. Print the job again.");
    waitUntilRead();
    return 1;
}

} // namespace

int supervise(const std::function<int()>& work) {
    const HeldSignals signals;
    const pid_t supervisor = ::getpid();
    const pid_t worker = ::fork();
    if (worker > 0) {
        for (const int descriptor : documentDescriptors) {
            ::close(descriptor);
        }
        return statusOf(worker, signals);
    }
    signals.Release();
    if (worker < 0) {
        tellDebug("The filter works without supervision: " + std::generic_category().message(errno));
    } else if (::prctl(PR_SET_PDEATHSIG, SIGTERM) != 0 || ::getppid() != supervisor) {
        // The supervisor ended before the request took effect.
        ::_exit(EXIT_FAILURE);
    }
    return work();
}

} // namespace torka::filter
