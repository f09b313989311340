// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Spooler.h"
#include "platform/cups/FetchedPPD.h"

#include <map>
#include <string>
#include <vector>

namespace torka::platform {

// The spooler interface for the system's print server. CUPS_SERVER chooses the server.
class CupsSpooler final : public Spooler {
public:
    bool GetJobs(std::vector<SpoolerJob>& jobs) override;
    std::string JobMessage(int job) override;
    bool GetDestinations(std::vector<SpoolerDestination>& destinations) override;
    std::string FetchPPD(const std::string& destination) override;
    Result<StandingOptionList> StandingOptions(const std::string& destination) override;
    std::string ChangeStandingOptions(const std::string& destination, const std::vector<std::string>& removed,
                                      const StandingOptionList& added) override;

private:
    std::map<std::string, std::shared_ptr<FetchedPPD>> descriptions;
};

} // namespace torka::platform
