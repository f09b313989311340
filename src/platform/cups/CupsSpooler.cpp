// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/CupsSpooler.h"

#include "platform/cups/CupsQueue.h"
#include "platform/cups/StandingOptions.h"

#include <cups/cups.h>

#include <cstdlib>
#include <cstring>

namespace torka::platform {

namespace {

std::string textOf(const char* text) { return text == nullptr ? std::string() : text; }

} // namespace

bool CupsSpooler::GetJobs(std::vector<SpoolerJob>& jobs) {
    jobs.clear();
    cups_job_t* listed = nullptr;
    const int count = cupsGetJobs2(CUPS_HTTP_DEFAULT, &listed, nullptr, 0, CUPS_WHICHJOBS_ALL);
    for (int i = 0; i < count; ++i) {
        jobs.push_back({listed[i].id, textOf(listed[i].title), textOf(listed[i].dest),
                        static_cast<int>(listed[i].state),
                        static_cast<std::int64_t>(listed[i].completed_time)});
    }
    cupsFreeJobs(count, listed);
    return count >= 0;
}

std::string CupsSpooler::JobMessage(int job) {
    const JobStatus status = jobStatus(job);
    return status.state == 0 ? std::string() : status.message;
}

bool CupsSpooler::GetDestinations(std::vector<SpoolerDestination>& destinations) {
    destinations.clear();
    cups_dest_t* listed = nullptr;
    const int count = cupsGetDests2(CUPS_HTTP_DEFAULT, &listed);
    for (int i = 0; i < count; ++i) {
        const cups_dest_t& dest = listed[i];
        SpoolerDestination destination;
        destination.name = textOf(dest.name);
        if (const char* state = cupsGetOption("printer-state", dest.num_options, dest.options)) {
            destination.state = static_cast<int>(std::strtol(state, nullptr, 10));
        }
        const char* accepts = cupsGetOption("printer-is-accepting-jobs", dest.num_options, dest.options);
        destination.acceptsJobs = textOf(accepts) != "false";
        destinations.push_back(std::move(destination));
    }
    cupsFreeDests(count, listed);
    // With a count of 0, the status distinguishes a server without queues from a missing answer.
    return count > 0 || cupsLastError() <= IPP_STATUS_ERROR_NOT_FOUND;
}

std::string CupsSpooler::FetchPPD(const std::string& destination) {
    std::shared_ptr<FetchedPPD>& description = descriptions[destination];
    if (!description) {
        description = FetchedPPD::Of(destination);
    }
    return description->Fetch(destination);
}

Result<StandingOptionList> CupsSpooler::StandingOptions(const std::string& destination) {
    return standingOptions(standingOptionsFile(), destination);
}

std::string CupsSpooler::ChangeStandingOptions(const std::string& destination,
                                               const std::vector<std::string>& removed,
                                               const StandingOptionList& added) {
    const Result<void> changed = changeStandingOptions(standingOptionsFile(), destination, removed, added);
    return changed ? std::string() : changed.Why().Line();
}

} // namespace torka::platform
