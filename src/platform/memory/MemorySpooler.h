// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Spooler.h"

#include <functional>
#include <map>

namespace torka::platform {

// A spooler in memory. Its public members may be changed at any time. Not thread-safe.
class MemorySpooler : public Spooler {
public:
    bool GetJobs(std::vector<SpoolerJob>& list) override;
    std::string JobMessage(int job) override { return messages[job]; }
    bool GetDestinations(std::vector<SpoolerDestination>& list) override;
    std::string FetchPPD(const std::string& destination) override;
    Result<StandingOptionList> StandingOptions(const std::string& destination) override;
    std::string ChangeStandingOptions(const std::string& destination, const std::vector<std::string>& removed,
                                      const StandingOptionList& added) override;

    std::vector<SpoolerJob> jobs;
    std::vector<SpoolerDestination> destinations;
    std::map<std::string, std::string> ppdPaths;        // by destination
    std::map<int, std::string> messages;                // by job
    std::map<std::string, StandingOptionList> standing; // by destination
    bool answers = true;                                // false when the spooler is down
    int jobQueries = 0;
    std::vector<std::string> fetched; // the destination of each fetch
    // Called before the jobs are returned; can change their states.
    std::function<void()> onJobsAsked;
};

} // namespace torka::platform
