#include "bidi/CommandJob.h"

#include "bidi/NumberText.h"
#include "bidi/StandardStreams.h"
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

// Titles are anyone's: what could begin a line of its own does not reach the log.
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

// The search for one job, from one look to the next.
class JobWatch {
public:
    explicit JobWatch(std::string_view jobTitle)
        : title(jobTitle) {}

    // True when there is no more to wait for.
    bool Look() {
        std::vector<SpoolerJob> jobs;
        const auto start = system().Now();
        const bool answered = spooler().GetJobs(jobs);
        logElapsed("cupsGetJobs", start);
        const SpoolerJob* job = Find(jobs);
        if (job && job->state == jobStateCompleted) {
            destination = job->destination.substr(0, nameCapacity - 1);
            logLine("try=" + std::to_string(triesLeft) + ", dest=" + oneLine(destination));
            completed = true;
            return true;
        }
        const bool hopeless = job && (job->state == jobStateStopped || job->state == jobStateCanceled ||
                                      job->state == jobStateAborted ||
                                      (looks % queueCheckInterval == 0 && IsStopped(job->destination)));
        // A queue that is deleted takes its jobs along.
        const bool isDeleted = answered && !job && id != 0 && !HasQueue();
        looks += job ? 1 : 0;
        --triesLeft;
        return hopeless || isDeleted;
    }
    bool Completed() const { return completed; }
    const std::string& Destination() const { return destination; }

private:
    const SpoolerJob* Find(const std::vector<SpoolerJob>& jobs) {
        const bool known = id != 0;
        const auto place = std::find_if(jobs.begin(), jobs.end(), [&](const SpoolerJob& job) {
            return known ? job.id == id : job.title == title;
        });
        if (place == jobs.end()) {
            return nullptr;
        }
        queue = place->destination;
        if (!known) {
            id = place->id;
            logLine("try=" + std::to_string(triesLeft) + " id=" + std::to_string(id) + ", c=" +
                    oneLine(place->title) + ", j=" + oneLine(title) + ", s=" + std::to_string(place->state));
        }
        return &*place;
    }
    // True as well when the spooler does not tell.
    bool HasQueue() const {
        std::vector<SpoolerDestination> destinations;
        return !spooler().GetDestinations(destinations) ||
               std::ranges::any_of(destinations, [this](const auto& entry) { return entry.name == queue; });
    }
    static bool IsStopped(const std::string& queue) {
        std::vector<SpoolerDestination> destinations;
        spooler().GetDestinations(destinations);
        return std::any_of(destinations.begin(), destinations.end(), [&](const SpoolerDestination& entry) {
            return entry.name == queue && entry.state == destinationStateStopped;
        });
    }

    std::string_view title;
    std::string queue;       // of the job, once it is known
    std::string destination; // of the completed job
    int id = 0;              // 0: not known yet
    int looks = 0;
    int triesLeft = tries;
    bool completed = false;
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
    // The queue may be gone meanwhile: the description known before is the best there is.
    if (!path.empty()) {
        setDestinationPPD(path);
    }
}

} // namespace

const std::string& destinationPPD() { return destinationPPDSlot(); }

void setDestinationPPD(std::string_view path) { destinationPPDSlot() = path.substr(0, nameCapacity - 1); }

bool isJobComple(std::string_view jobTitle, const WaitObserver& observer) {
    const auto start = system().Now();
    JobWatch watch(jobTitle);
    poll(
        {WaitFor::commandJob, tries, tryInterval, true}, [&watch] { return watch.Look(); }, observer);
    logElapsed("JobStatusCheck", start);
    bool complete = watch.Completed();
    if (complete) {
        fetchDestinationPPD(watch.Destination());
        complete = system().Sleep(afterFetch);
    }
    logElapsed("isJobComple", start);
    return complete;
}

bool queueTakesCommands(std::string_view queueName) {
    std::vector<SpoolerDestination> destinations;
    spooler().GetDestinations(destinations);
    return std::none_of(destinations.begin(), destinations.end(), [&](const SpoolerDestination& entry) {
        return entry.name == queueName && (entry.state == destinationStateStopped || !entry.acceptsJobs);
    });
}

CommandOutcome sendCommandAndWait(const PMPrinter& printer, std::string_view text, const std::string& title,
                                  const WaitObserver& observer) {
    if (!queueTakesCommands(utf8Text(PMPrinterGetName(printer)))) {
        return CommandOutcome::queueNotReady;
    }
    if (PMPrinterSendCommand(printer, cfString(text), cfString(title), nullptr) != noErr) {
        return CommandOutcome::notSent;
    }
    return isJobComple(title, observer) ? CommandOutcome::completed : CommandOutcome::notCompleted;
}

} // namespace torka
