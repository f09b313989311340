// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemorySpooler.h"

#include <algorithm>

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

Result<StandingOptionList> MemorySpooler::StandingOptions(const std::string& destination) {
    if (!answers) {
        return Fault{"no answer"};
    }
    return standing[destination];
}

std::string MemorySpooler::ChangeStandingOptions(const std::string& destination,
                                                 const std::vector<std::string>& removed,
                                                 const StandingOptionList& added) {
    if (!answers) {
        return "no answer";
    }
    StandingOptionList& options = standing[destination];
    std::erase_if(options, [&](const auto& option) {
        return std::ranges::find(removed, option.first) != removed.end() ||
               std::ranges::any_of(added, [&](const auto& each) { return each.first == option.first; });
    });
    options.insert(options.end(), added.begin(), added.end());
    return {};
}

} // namespace torka::platform
