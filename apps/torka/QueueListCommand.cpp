// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/FilterLines.h"
#include "apps/torka/TextTable.h"
#include "platform/Spooler.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"
#include "platform/cups/FetchedPPD.h"

#include <memory>
#include <optional>

namespace torka::tool {

namespace {

const char* stateWord(const platform::QueueState& queue) {
    switch (queue.state) {
    case destinationStateIdle:
        return "idle";
    case destinationStateProcessing:
        return "printing";
    case destinationStateStopped:
        return "stopped";
    default:
        return "unknown";
    }
}

// Whether documents and commands pass torkafilter; nullopt when the description cannot be read.
std::optional<bool> usesFilter(const std::string& queue) {
    platform::FetchedPPD description;
    std::string text;
    if (platform::system().ReadFile(description.Fetch(queue), maximumDescription, text)) {
        return std::nullopt;
    }
    return filterLineFaults(text).empty();
}

Json queueJson(const platform::QueueState& queue, const std::optional<bool>& isFiltered) {
    return {{"name", queue.name},
            {"state", stateWord(queue)},
            {"acceptsJobs", queue.acceptsJobs},
            {"message", queue.message},
            {"torkafilter", isFiltered ? Json(*isFiltered) : Json()},
            {"device", queue.deviceUri},
            {"model", queue.makeAndModel}};
}

ExitStatus showQueues(bool isJson) {
    if (const std::string problem = platform::serverProblem(); !problem.empty()) {
        return unusable(problem);
    }
    const auto queues = platform::listQueues();
    if (!queues) {
        return unusable("the print server does not list its queues");
    }
    Json json = Json::object();
    json["queues"] = Json::array();
    TextTable table({"Queue", "State", "Jobs", "torkafilter", "Device", "Model"});
    for (const platform::QueueState& queue : *queues) {
        const std::optional<bool> isFiltered = usesFilter(queue.name);
        if (isJson) {
            json["queues"].push_back(queueJson(queue, isFiltered));
        } else {
            table.Add({queue.name, stateWord(queue), queue.acceptsJobs ? "accepted" : "rejected",
                       isFiltered ? (*isFiltered ? "yes" : "no") : "-", queue.deviceUri, queue.makeAndModel});
        }
    }
    print(isJson ? jsonDocument(json) : table.Text());
    return ExitStatus::good;
}

} // namespace

void addQueueListCommand(CLI::App& queue, ExitStatus& status) {
    const auto isJson = std::make_shared<bool>(false);
    CLI::App* list = queue.add_subcommand("list", "List the print server's queues");
    list->add_flag("--json", *isJson, "As JSON");
    describe(*list, {.examples = {"torka queue list"}});
    list->callback([isJson, &status] { status = showQueues(*isJson); });
}

} // namespace torka::tool
