#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// What is asked of the spooler beyond one printer: its jobs, its destinations, a destination's description.
//
// One instance serves the process. It is chosen once at start with setSpooler; until then the first use
// fails. Each call asks the spooler anew: nothing is remembered between calls.

namespace torka::platform {

// States of a job and of a destination, as IPP numbers them (RFC 8011, 5.3.7 and 5.4.11).
inline constexpr int jobStatePending = 3;
inline constexpr int jobStateHeld = 4;
inline constexpr int jobStateProcessing = 5;
inline constexpr int jobStateStopped = 6;
inline constexpr int jobStateCanceled = 7;
inline constexpr int jobStateAborted = 8;
inline constexpr int jobStateCompleted = 9;

inline constexpr int destinationStateIdle = 3;
inline constexpr int destinationStateProcessing = 4;
inline constexpr int destinationStateStopped = 5;

struct SpoolerJob {
    int id = 0;
    std::string title;       // UTF-8, exactly as the job was sent
    std::string destination; // queue name
    int state = 0;           // jobState…
    // Seconds since 1970 at which the job was over; 0 while it is not, or where the spooler does not tell.
    std::int64_t overAt = 0;
};

struct SpoolerDestination {
    std::string name;
    int state = destinationStateIdle;
    bool acceptsJobs = true;
};

class Spooler {
public:
    Spooler() = default;
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;
    virtual ~Spooler();
    // The jobs of all destinations and all users, the finished ones included, in the order in which the
    // spooler lists them. False, with an empty list, when the spooler does not answer.
    virtual bool GetJobs(std::vector<SpoolerJob>& jobs) = 0;
    // What the job's filters said last: why it failed. "" for a job that is not known.
    virtual std::string JobMessage(int /*job*/) { return {}; }
    // False, with an empty list, when the spooler does not answer.
    virtual bool GetDestinations(std::vector<SpoolerDestination>& destinations) = 0;
    // Fetches a destination's description afresh and tells its path, "" when there is none. The file may be
    // the spooler's own by a symbolic link, or a copy: never write to it. It stays readable until this
    // destination's description is fetched again, or until the instance ends; the instance removes it.
    virtual std::string FetchPPD(const std::string& destination) = 0;
};

Spooler& spooler();
void setSpooler(std::unique_ptr<Spooler> newSpooler);
bool hasSpooler();

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
