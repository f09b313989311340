// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// The spooler's functions beyond one printer: its jobs, its destinations and their descriptions.
//
// One instance serves the process. REQUIRES: setSpooler is called at start, before the first use. Each call
// asks the spooler again; nothing is cached.

namespace torka::platform {

// States of a job and of a destination, with the numbers of IPP (RFC 8011, 5.3.7 and 5.4.11).
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
    std::string title;       // UTF-8, exactly as sent with the job
    std::string destination; // queue name
    int state = 0;           // jobState…
    // The job's end in seconds since 1970; 0 before the end, or when the spooler does not give it.
    std::int64_t overAt = 0;
};

struct SpoolerDestination {
    std::string name;
    int state = destinationStateIdle;
    bool acceptsJobs = true;
};

using StandingOptionList = std::vector<std::pair<std::string, std::string>>;

class Spooler {
public:
    Spooler() = default;
    Spooler(const Spooler&) = delete;
    Spooler& operator=(const Spooler&) = delete;
    virtual ~Spooler();
    // The jobs of all destinations and users, including finished ones, in the spooler's order. False, with an
    // empty list, when the spooler does not answer.
    virtual bool GetJobs(std::vector<SpoolerJob>& jobs) = 0;
    // The last message of the job's filters, which is the reason of a failure. "" for an unknown job.
    virtual std::string JobMessage(int /*job*/) { return {}; }
    // False, with an empty list, when the spooler does not answer.
    virtual bool GetDestinations(std::vector<SpoolerDestination>& destinations) = 0;
    // Fetches a destination's description again and returns its path; "" without one. The file may be a
    // symbolic link to the spooler's own file, or a copy: never write to it. It stays readable until the next
    // fetch for this destination or the end of the instance, which removes it.
    virtual std::string FetchPPD(const std::string& destination) = 0;
    // The options that this person keeps for all jobs of a destination, by name.
    virtual Result<StandingOptionList> StandingOptions(const std::string& /*destination*/) {
        return StandingOptionList();
    }
    // Removes the named ones and sets the others. Returns "" or why nothing was changed.
    virtual std::string ChangeStandingOptions(const std::string& destination,
                                              const std::vector<std::string>& removed,
                                              const StandingOptionList& added);
};

// Whether the process has one.
bool hasSpooler();
Spooler& spooler();
void setSpooler(std::unique_ptr<Spooler> newSpooler);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
