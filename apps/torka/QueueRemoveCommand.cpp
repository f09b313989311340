// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/PersonsLanguage.h"
#include "platform/cups/CupsQueue.h"

#include <memory>

namespace torka::tool {

namespace {

ExitStatus removeNamedQueue(const std::string& name) {
    // An empty name would mean the default queue.
    if (name.empty()) {
        return unusable(platform::queueNameProblem(name));
    }
    if (const std::string problem = platform::queueProblem(name); !problem.empty()) {
        return unusable(problem);
    }
    if (const std::string problem = platform::removeQueue(name); !problem.empty()) {
        return unusable(name + ": the print server does not remove the queue: " + problem);
    }
    print(printable(inPersonsLanguage("Queue " + name + " is removed")) + "\n");
    return ExitStatus::good;
}

} // namespace

void addQueueRemoveCommand(CLI::App& queue, ExitStatus& status) {
    const auto name = std::make_shared<std::string>();
    CLI::App* remove = queue.add_subcommand("remove", "Remove a queue and its jobs");
    remove->add_option("NAME", *name, "Name of the queue")->option_text("QUEUE")->required();
    describe(*remove, {.examples = {"torka queue remove office"}});
    remove->callback([name, &status] { status = removeNamedQueue(*name); });
}

} // namespace torka::tool
