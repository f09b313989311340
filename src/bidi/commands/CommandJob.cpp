// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/CommandJob.h"

#include "bidi/text/NumberText.h"
#include "bidi/text/StandardStreams.h"
#include "platform/Spooler.h"
#include "platform/System.h"

#include <algorithm>

namespace torka {

namespace {

using std::chrono::milliseconds;

constexpr int tries = 360;
constexpr milliseconds tryInterval{100};
constexpr milliseconds afterFetch{700};
constexpr int queueCheckInterval = 10; // tries
constexpr std::size_t nameCapacity = 1024;

std::string& destinationPPDSlot() {
    static std::string slot;
    return slot;
}

// Anyone can choose a title. Replaces control characters, so that a title cannot begin a line of its own in
// the log.
std::string oneLine(std::string_view text) {
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F'; },
        '?');
    return line;
}

void logLine(const std::string& text) { standardStreams().Error("isJobComple: " + text + "\n"); }

void logElapsed(std::string_view what, std::chrono::steady_clock::time_point start) {
    const std::chrono::duration<double> elapsed = system().Now() - start;
    logLine("(" + std::string(what) + ") elapsed=" + fixedText(elapsed.count()));
}

enum class JobEnd { none, completed, ended, hopeless };

// Watches one job over several looks at the spooler's list. Its number and queue are known from the sending,
// or the title finds them.
class JobWatch {
public:
    explicit JobWatch(std::string_view jobTitle, int jobNumber = 0, std::string queueName = {})
        : title(jobTitle)
        , queue(std::move(queueName))
        , id(jobNumber) {}

    // True when the wait is over.
    bool Look() {
        std::vector<SpoolerJob> jobs;
        const auto start = system().Now();
        const bool answered = spooler().GetJobs(jobs);
        logElapsed("cupsGetJobs", start);
        const SpoolerJob* job = Find(jobs);
        if (job) {
            end = EndOf(*job);
            overAt = job->overAt;
            ++looks;
        } else if (answered && id != 0) {
            end = EndOfUnlisted();
        }
        if (end == JobEnd::completed || end == JobEnd::ended) {
            destination = queue.substr(0, nameCapacity - 1);
            logLine("try=" + std::to_string(triesLeft) + ", dest=" + oneLine(destination));
            return true;
        }
        --triesLeft;
        return end == JobEnd::hopeless;
    }
    JobEnd End() const { return end; }
    bool IsOver() const { return end == JobEnd::completed || end == JobEnd::ended; }
    const std::string& Destination() const { return destination; }
    int Number() const { return id; }
    std::int64_t OverAt() const { return overAt; }

private:
    const SpoolerJob* Find(const std::vector<SpoolerJob>& jobs) {
        const auto place = std::find_if(jobs.begin(), jobs.end(), [&](const SpoolerJob& job) {
            return id != 0 ? job.id == id : job.title == title;
        });
        if (place == jobs.end()) {
            return nullptr;
        }
        queue = place->destination;
        id = place->id;
        if (looks == 0) {
            logLine("try=" + std::to_string(triesLeft) + " id=" + std::to_string(id) + ", c=" +
                    oneLine(place->title) + ", j=" + oneLine(title) + ", s=" + std::to_string(place->state));
        }
        return &*place;
    }
    JobEnd EndOf(const SpoolerJob& job) const {
        switch (job.state) {
        case jobStateCompleted:
            return JobEnd::completed;
        case jobStateStopped:
        case jobStateCanceled:
        case jobStateAborted:
            return JobEnd::hopeless;
        default:
            return looks % queueCheckInterval == 0 && IsStopped() ? JobEnd::hopeless : JobEnd::none;
        }
    }
    // A deleted queue loses its jobs. While the queue exists, the spooler has dropped a job that is over.
    JobEnd EndOfUnlisted() const {
        std::vector<SpoolerDestination> destinations;
        if (!spooler().GetDestinations(destinations)) {
            return JobEnd::none;
        }
        const bool hasQueue =
            std::ranges::any_of(destinations, [this](const auto& entry) { return entry.name == queue; });
        return hasQueue ? JobEnd::ended : JobEnd::hopeless;
    }
    bool IsStopped() const {
        std::vector<SpoolerDestination> destinations;
        spooler().GetDestinations(destinations);
        return std::any_of(destinations.begin(), destinations.end(), [&](const SpoolerDestination& entry) {
            return entry.name == queue && entry.state == destinationStateStopped;
        });
    }

    std::string_view title;
    std::string queue;
    std::string destination; // queue of the job that is over
    int id;                  // 0 while unknown
    std::int64_t overAt = 0;
    JobEnd end = JobEnd::none;
    int looks = 0; // how often the list held the job
    int triesLeft = tries;
};

void fetchDestinationPPD(const std::string& destination) {
    std::vector<SpoolerDestination> destinations;
    spooler().GetDestinations(destinations);
    logLine("numdests=" + std::to_string(destinations.size()));
    const bool exists =
        std::any_of(destinations.begin(), destinations.end(),
                    [&](const SpoolerDestination& entry) { return entry.name == destination; });
    const std::string path = exists ? spooler().FetchPPD(destination) : std::string();
    logLine("new PPD=" + (path.empty() ? "(null)" : oneLine(path)));
    // Without a new PPD (the queue may be gone), keep the path known before.
    if (!path.empty()) {
        setDestinationPPD(path);
    }
}

// True when the job is over and its queue's PPD was fetched again.
bool waitForJob(JobWatch& watch, const WaitObserver& observer) {
    const auto start = system().Now();
    poll(
        {WaitFor::commandJob, tries, tryInterval, true}, [&watch] { return watch.Look(); }, observer);
    logElapsed("JobStatusCheck", start);
    bool complete = watch.IsOver();
    if (complete) {
        fetchDestinationPPD(watch.Destination());
        complete = system().Sleep(afterFetch);
    }
    logElapsed("isJobComple", start);
    return complete;
}

} // namespace

const std::string& destinationPPD() { return destinationPPDSlot(); }

void setDestinationPPD(std::string_view path) { destinationPPDSlot() = path.substr(0, nameCapacity - 1); }

bool isJobComple(std::string_view jobTitle, const WaitObserver& observer) {
    JobWatch watch(jobTitle);
    return waitForJob(watch, observer);
}

bool queueTakesCommands(std::string_view queueName) {
    std::vector<SpoolerDestination> destinations;
    spooler().GetDestinations(destinations);
    return std::none_of(destinations.begin(), destinations.end(), [&](const SpoolerDestination& entry) {
        return entry.name == queueName && (entry.state == destinationStateStopped || !entry.acceptsJobs);
    });
}

CommandOutcome sendCommandAndWait(const PMPrinter& sessionPrinter, std::string_view text,
                                  const std::string& title, const WaitObserver& observer, CommandEnd* end) {
    const PMPrinter printer = describedPrinter(sessionPrinter);
    const std::string queue = utf8Text(PMPrinterGetName(printer));
    if (!queueTakesCommands(queue)) {
        return CommandOutcome::queueNotReady;
    }
    const std::int64_t sentAt = std::chrono::system_clock::to_time_t(platform::system().CalendarTime());
    if (PMPrinterSendCommand(printer, cfString(text), cfString(title), nullptr) != noErr) {
        return CommandOutcome::notSent;
    }
    JobWatch watch(title, printer->CommandJob(), queue);
    const bool isOver = waitForJob(watch, observer);
    if (end) {
        end->overAt = watch.OverAt() != 0 ? watch.OverAt() : sentAt;
        end->reason = watch.End() == JobEnd::hopeless ? spooler().JobMessage(watch.Number()) : std::string();
    }
    if (!isOver) {
        return CommandOutcome::notCompleted;
    }
    return watch.End() == JobEnd::completed ? CommandOutcome::completed : CommandOutcome::ended;
}

} // namespace torka
