// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/Description.h"
#include "apps/torka/FilterLines.h"
#include "apps/torka/QueueCheck.h"
#include "platform/System.h"
#include "platform/cups/CupsHandles.h"
#include "platform/cups/CupsQueue.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <nlohmann/json.hpp>

namespace torka::tool {

namespace {

constexpr std::size_t maximumDescription = std::size_t{64} * 1024 * 1024;

struct QueueOptions {
    std::string name;
    std::string uri;
    std::string path;
    bool isJson = false;
};

ExitStatus addNamedQueue(const QueueOptions& options) {
    if (const std::string problem = queueNameProblem(options.name); !problem.empty()) {
        return unusable(printable(options.name) + ": " + problem);
    }
    if (const auto description = readUsableDescription(options.path); !description) {
        return unusable(description.Why());
    }
    std::string text;
    if (const std::error_code error = platform::system().ReadFile(options.path, maximumDescription, text)) {
        return unusable(options.path + ": cannot be read: " + error.message());
    }
    const std::filesystem::path copy =
        platform::system().TemporaryFolder() / ("torka-" + platform::system().CreateUuidString() + ".ppd");
    constexpr unsigned mode = 0600;
    if (const std::error_code error = platform::system().WriteFile(copy, withFilterLines(text), mode)) {
        return unusable(copy.string() + ": cannot be written: " + error.message());
    }
    const std::string problem = addQueue(options.name, options.uri, copy);
    std::error_code ignored;
    std::filesystem::remove(copy, ignored);
    if (!problem.empty()) {
        return unusable(options.name + ": the print server does not add the queue: " + problem);
    }
    print("Queue " + options.name + ", device " + options.uri + "\n");
    return ExitStatus::good;
}

const char* stateWord(CheckState state) {
    switch (state) {
    case CheckState::closed:
        return "closed";
    case CheckState::open:
        return "open";
    case CheckState::unknown:
        break;
    }
    return "unknown";
}

ExitStatus checkNamedQueue(const QueueOptions& options) {
    if (!queueNameProblem(options.name).empty() ||
        !platform::printerAttributes(options.name, {"printer-name"})) {
        return unusable("the print server has no queue " + printable(options.name));
    }
    const std::vector<QueueFinding> findings = checkQueue(options.name);
    nlohmann::json rows = nlohmann::json::array();
    for (const QueueFinding& finding : findings) {
        const std::string state = stateWord(finding.state);
        rows.push_back({{"what", finding.what}, {"state", state}, {"text", finding.text}});
        if (!options.isJson) {
            print(finding.what + ": " + state + ": " + printable(finding.text) + "\n");
        }
    }
    if (options.isJson) {
        print(nlohmann::json{{"queue", options.name}, {"findings", rows}}.dump(2) + "\n");
    }
    return std::ranges::any_of(findings,
                               [](const auto& finding) { return finding.state == CheckState::open; })
               ? ExitStatus::findings
               : ExitStatus::good;
}

} // namespace

void addQueueCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* group = app.add_subcommand("queue", "Queues of the print server");
    group->require_subcommand(1);
    const auto options = std::make_shared<QueueOptions>();
    CLI::App* command = group->add_subcommand("add", "Add a queue that uses torkafilter, or change it");
    command->add_option("NAME", options->name, "Name of the queue")->required();
    command->add_option("URI", options->uri, "Device")->required();
    command
        ->add_option("PPD", options->path, "Extended PPD file; the queue gets a copy with the filter's lines")
        ->required();
    command->callback([options, &status] { status = addNamedQueue(*options); });
    CLI::App* check = group->add_subcommand("check", "Tell what can be seen of how safe a queue's jobs are");
    check->add_option("NAME", options->name, "Name of the queue")->required();
    check->add_flag("--json", options->isJson, "Print JSON");
    check->callback([options, &status] { status = checkNamedQueue(*options); });
}

} // namespace torka::tool
