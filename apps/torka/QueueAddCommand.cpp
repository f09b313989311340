// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/CarriedRecords.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/Description.h"
#include "apps/torka/FilterLines.h"
#include "apps/torka/PersonsLanguage.h"
#include "apps/torka/ServerFiles.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"
#include "platform/cups/FetchedPPD.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>
#include <vector>

namespace torka::tool {

namespace {

struct AddOptions {
    std::string name;
    std::string uri;
    std::string path;
    bool isForced = false;
};

// A description that the print server and lint can use.
Result<void> checkDescription(const AddOptions& options) {
    const auto description = readUsableDescription(options.path);
    if (!description) {
        return description.Why();
    }
    if (options.isForced) {
        return {};
    }
    if (const std::string problem = platform::descriptionProblem(options.path); !problem.empty()) {
        return Fault{"programs that read it with CUPS cannot: " + problem +
                         "; --force adds the queue all the same",
                     options.path};
    }
    PPDXErrors& errors = *(*description)->Errors();
    if (const PPDXErrorObj* first = errors.First(); first != nullptr) {
        return Fault{std::to_string(errors.Count()) + " errors, the first of them " +
                         ppdErrName(first->Code()) + " " + jsonText(first->Keyword()) + " in line " +
                         std::to_string(first->Line()) +
                         "; torka lint lists them, and --force adds the queue all the same",
                     options.path};
    }
    return {};
}

// The filter of a local server. The server itself tells of a remote one's.
Result<void> checkFilter() {
    if (!platform::isServerLocal()) {
        return {};
    }
    const ServerSetup setup = serverSetup();
    const std::string problem = filterProblem(filterPath(setup), setup.user);
    return problem.empty() ? Result<void>() : Fault{"the print server cannot run torkafilter: " + problem};
}

// The queue's new description, and what of its former one stays or goes.
struct NewDescription {
    std::string text;
    std::vector<std::string> records; // names of those that the former one had
    std::vector<std::string> unused;  // names of those of the file that are older
    std::vector<FilterLine> replaced; // lines of other filters, from both
};

// Without a queue of this name, or a description of it, the former description is empty.
Result<NewDescription> makeDescription(const AddOptions& options) {
    std::string given;
    if (const std::error_code error = platform::system().ReadFile(options.path, maximumDescription, given)) {
        return Fault{"cannot be read: " + error.message(), options.path};
    }
    std::string former;
    platform::FetchedPPD fetched;
    if (const std::string path = fetched.Fetch(options.name); !path.empty()) {
        if (const std::error_code error = platform::system().ReadFile(path, maximumDescription, former)) {
            return Fault{"the records of the queue's description cannot be kept: " + path +
                         " cannot be read: " + error.message()};
        }
    }
    NewDescription made;
    CarriedRecords records = recordsToCarry(former, given);
    made.text = withFilterLines(withoutRecords(given, records.replaced)) + records.lines;
    made.records = std::move(records.names);
    made.unused = std::move(records.replaced);
    made.replaced = otherFilterLines(former);
    for (FilterLine& line : otherFilterLines(given)) {
        if (std::ranges::find(made.replaced, line) == made.replaced.end()) {
            made.replaced.push_back(std::move(line));
        }
    }
    return made;
}

// Returns "" or why there is no queue.
std::string sendQueue(const AddOptions& options, const std::string& description) {
    const std::filesystem::path copy =
        platform::system().TemporaryFolder() / ("torka-" + platform::system().CreateUuidString() + ".ppd");
    constexpr unsigned mode = 0600;
    if (const std::error_code error = platform::system().WriteFile(copy, description, mode)) {
        return copy.string() + " cannot be written: " + error.message();
    }
    std::string problem = platform::addQueue(options.name, options.uri, copy);
    std::error_code ignored;
    std::filesystem::remove(copy, ignored);
    return problem;
}

ExitStatus tellAdded(const AddOptions& options, const NewDescription& description) {
    print(printable(inPersonsLanguage("Queue " + options.name + ", device " + options.uri)) + "\n");
    if (!description.records.empty()) {
        std::string names;
        for (const std::string& name : description.records) {
            names += (names.empty() ? "" : ", ") + name;
        }
        print(printable(inPersonsLanguage("Records kept from the queue's former description: " +
                                          std::to_string(description.records.size()) + " (" + names + ")")) +
              "\n");
    }
    for (const FilterLine& line : description.replaced) {
        warn(options.name + ": torkafilter takes " + line.type + " in place of " + line.program +
             " (docs/guide/making-a-filter.md tells how to keep both)");
    }
    for (const std::string& name : description.unused) {
        warn(options.name + ": the record " + name + " of " + options.path +
             " is not used: the queue has a newer one");
    }
    return description.replaced.empty() && description.unused.empty() ? ExitStatus::good
                                                                      : ExitStatus::findings;
}

// What the server says about the filters of a queue that it has just read; "" for nothing.
std::string missingFilter(const std::string& name) {
    const auto state = platform::queueState(name);
    const bool isMissing =
        state && std::ranges::any_of(state->reasons, [](const std::string& reason) {
            return reason.starts_with("cups-missing-filter") || reason.starts_with("cups-insecure-filter");
        });
    return isMissing ? "the print server finds no filter that it may run: " + state->message : "";
}

ExitStatus addNamedQueue(const AddOptions& options) {
    if (const std::string problem = queueNameProblem(options.name); !problem.empty()) {
        return unusable(options.name + ": " + problem);
    }
    if (const Result<void> checked = checkDescription(options); !checked) {
        return unusable(checked.Why());
    }
    if (const std::string problem = platform::serverProblem(); !problem.empty()) {
        return unusable(problem);
    }
    if (const Result<void> checked = checkFilter(); !checked) {
        return unusable(checked.Why());
    }
    const bool isNew = !platform::queueState(options.name);
    const Result<NewDescription> description = makeDescription(options);
    if (!description) {
        return unusable(description.Why().In(options.name));
    }
    if (const std::string problem = sendQueue(options, description->text); !problem.empty()) {
        return unusable(options.name + ": the print server does not add the queue: " + problem);
    }
    if (const std::string problem = missingFilter(options.name); !problem.empty()) {
        if (isNew) {
            platform::removeQueue(options.name);
        }
        return unusable(options.name +
                        (isNew ? ": the queue is not added: " : ": the queue is changed, but ") + problem);
    }
    return tellAdded(options, *description);
}

} // namespace

void addQueueAddCommand(CLI::App& queue, ExitStatus& status) {
    const auto options = std::make_shared<AddOptions>();
    CLI::App* command = queue.add_subcommand("add", "Add a queue that uses torkafilter, or change it");
    command->add_option("NAME", options->name, "Name of the queue")->required();
    command->add_option("URI", options->uri, "Device, such as socket://10.0.0.7")->required();
    command->add_option("PPD", options->path, "Extended PPD file; the queue gets a copy")->required();
    command->add_flag("--force", options->isForced, "Add it although CUPS or torka lint finds errors");
    describe(*command,
             {.examples = {"torka queue add office socket://10.0.0.7 samples/torka-production.ppd"},
              .findings = "torkafilter replaces another filter, or a record of PPD is not used",
              .details =
                  "The copy of the description names torkafilter in its *cupsFilter lines, and keeps the "
                  "records that the filter has put into the queue's former description: address list, "
                  "presets, popup job notes. These replace records of the same names in PPD. Refuses a "
                  "description that CUPS cannot read or that has errors for torka lint, unless --force is "
                  "given, and a server that cannot run torkafilter."});
    command->callback([options, &status] { status = addNamedQueue(*options); });
}

} // namespace torka::tool
