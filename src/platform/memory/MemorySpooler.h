#pragma once

#include "platform/Spooler.h"

#include <functional>
#include <map>

namespace torka::platform {

// A spooler that holds what it is told. Public members may be changed at any time. Not thread-safe.
class MemorySpooler final : public Spooler {
public:
    bool GetJobs(std::vector<SpoolerJob>& list) override;
    std::string JobMessage(int job) override { return messages[job]; }
    bool GetDestinations(std::vector<SpoolerDestination>& list) override;
    std::string FetchPPD(const std::string& destination) override;

    std::vector<SpoolerJob> jobs;
    std::vector<SpoolerDestination> destinations;
    std::map<std::string, std::string> ppdPaths; // by destination
    std::map<int, std::string> messages;         // by job
    bool answers = true;                         // false: the spooler is down
    int jobQueries = 0;
    std::vector<std::string> fetched; // destinations, one entry a fetch
    // Called before the jobs are given, for jobs whose state changes meanwhile.
    std::function<void()> onJobsAsked;
};

} // namespace torka::platform
