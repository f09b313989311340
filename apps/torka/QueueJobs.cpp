// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/QueueJobs.h"

#include "apps/torka/PersonsLanguage.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"
#include "platform/posix/InstalledSystem.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace torka::tool {

namespace {

constexpr std::chrono::milliseconds interval(50);

// The clock of the wait under way; the signal handler calls its Cancel, which is safe there.
PosixSystem* waitingSystem = nullptr;

void interrupt(int /*signal*/) {
    if (waitingSystem != nullptr) {
        waitingSystem->Cancel();
    }
}

const char* stateText(const JobStatus& status) {
    switch (status.state) {
    case 3:
        return "pending";
    case 4:
        return "held";
    case 5:
        return "printing";
    case 6:
        return "stopped";
    case 7:
        return "cancelled";
    case 8:
        return "aborted";
    case 9:
        return "completed";
    default:
        return status.isGone ? "ended" : "unknown to the server";
    }
}

void showState(int job, const JobStatus& status) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r\x1b[K%s %s%s",
                     inPersonsLanguage("Job " + std::to_string(job) + ": " + stateText(status)).c_str(),
                     printable(status.message).c_str(), status.IsOver() || status.state == 0 ? "\n" : "");
    }
}

} // namespace

ExitStatus followJob(const std::string& queueName, int job) {
    PosixSystem clock(platform::installedSystem());
    waitingSystem = &clock;
    auto* const before = std::signal(SIGINT, interrupt);
    JobStatus status = jobStatus(job);
    bool isCancelled = false;
    while (!status.IsOver() && status.state != 0) {
        showState(job, status);
        if (!clock.Sleep(interval)) {
            cancelJob(queueName, job);
            clock.ClearCancel();
            isCancelled = true;
        }
        status = jobStatus(job);
    }
    if (status.state == 0 && !status.isGone) {
        if (std::string problem = serverProblem(); !problem.empty()) {
            status.message = std::move(problem);
        }
    }
    // The server took the job: where it is gone, it has ended. One that a filter stopped would still be
    // there.
    if (status.isGone) {
        status.message.clear();
        status.state = isCancelled ? 7 : 0;
    }
    showState(job, status);
    std::signal(SIGINT, before);
    waitingSystem = nullptr;
    if (status.state == 9) {
        return ExitStatus::good;
    }
    if (status.isGone && !isCancelled) {
        warn("job " + std::to_string(job) + " on " + queueName +
             " has ended; the server keeps no list of ended jobs and cannot tell how");
        return ExitStatus::good;
    }
    warn("job " + std::to_string(job) + " on " + queueName + " is " + stateText(status) +
         (status.message.empty() ? "" : ": " + status.message));
    return ExitStatus::findings;
}

} // namespace torka::tool
