// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/PersonsLanguage.h"
#include "apps/torka/QueueHealth.h"
#include "apps/torka/QueuePolicy.h"
#include "platform/cups/CupsQueue.h"
#include "platform/posix/InstalledSystem.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>

namespace torka::tool {

namespace {

struct CheckOptions {
    std::string name;
    std::string bundle;
    bool isJson = false;
};

const char* stateWord(CheckState state) {
    switch (state) {
    case CheckState::good:
        return "good";
    case CheckState::fault:
        return "fault";
    case CheckState::closed:
        return "closed";
    case CheckState::open:
        return "open";
    case CheckState::unknown:
        break;
    }
    return "unknown";
}

std::string defaultBundle() { return platform::installedBundle(platform::programFolder()).string(); }

void printFindings(const std::vector<QueueFinding>& findings) {
    for (const QueueFinding& finding : findings) {
        print(finding.what + ": " + inPersonsLanguage(stateWord(finding.state)) + ": " +
              printable(inPersonsLanguage(finding.text)) + "\n");
        if (!finding.remedy.empty()) {
            print("    " + printable(inPersonsLanguage("mend: " + finding.remedy)) + "\n");
        }
    }
}

void printJson(const std::string& queue, const std::vector<QueueFinding>& findings) {
    Json json = Json::object();
    json["queue"] = queue;
    json["findings"] = Json::array();
    for (const QueueFinding& finding : findings) {
        json["findings"].push_back({{"what", finding.what},
                                    {"state", stateWord(finding.state)},
                                    {"text", finding.text},
                                    {"remedy", finding.remedy}});
    }
    print(jsonDocument(json));
}

ExitStatus checkNamedQueue(const CheckOptions& options) {
    // An empty name would mean the default queue.
    if (options.name.empty()) {
        return unusable(platform::queueNameProblem(options.name));
    }
    if (const std::string problem = platform::queueProblem(options.name); !problem.empty()) {
        return unusable(problem);
    }
    std::vector<QueueFinding> findings =
        checkQueueHealth(options.name, options.bundle.empty() ? defaultBundle() : options.bundle);
    for (QueueFinding& finding : checkQueuePolicy(options.name)) {
        findings.push_back(std::move(finding));
    }
    if (options.isJson) {
        printJson(options.name, findings);
    } else {
        printFindings(findings);
    }
    return std::ranges::any_of(findings,
                               [](const QueueFinding& finding) {
                                   return finding.state == CheckState::open ||
                                          finding.state == CheckState::fault;
                               })
               ? ExitStatus::findings
               : ExitStatus::good;
}

} // namespace

void addQueueCheckCommand(CLI::App& queue, ExitStatus& status) {
    const auto options = std::make_shared<CheckOptions>();
    CLI::App* check =
        queue.add_subcommand("check", "Tell whether a queue prints its settings, and how safely");
    check->add_option("NAME", options->name, "Name of the queue")->option_text("QUEUE")->required();
    check->add_option("--bundle", options->bundle, "Plug-in bundle beside which the module lies")
        ->option_text("FOLDER");
    check->add_flag("--json", options->isJson, "As JSON");
    describe(*check, {.examples = {"torka queue check office"}, .findings = "something is at fault or open"});
    check->callback([options, &status] { status = checkNamedQueue(*options); });
}

} // namespace torka::tool
