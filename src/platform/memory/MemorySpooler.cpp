// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemorySpooler.h"

namespace torka::platform {

bool MemorySpooler::GetJobs(std::vector<SpoolerJob>& list) {
    ++jobQueries;
    if (onJobsAsked) {
        onJobsAsked();
    }
    list = answers ? jobs : std::vector<SpoolerJob>();
    return answers;
}

bool MemorySpooler::GetDestinations(std::vector<SpoolerDestination>& list) {
    list = answers ? destinations : std::vector<SpoolerDestination>();
    return answers;
}

std::string MemorySpooler::FetchPPD(const std::string& destination) {
    fetched.push_back(destination);
    const auto place = ppdPaths.find(destination);
    return answers && place != ppdPaths.end() ? place->second : std::string();
}

} // namespace torka::platform
