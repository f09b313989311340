#include "apps/torka/Command.h"
#include "apps/torka/Description.h"
#include "apps/torka/FilterLines.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"

#include <filesystem>
#include <memory>

namespace torka::tool {

namespace {

constexpr std::size_t mostDescription = std::size_t{64} * 1024 * 1024;

struct QueueOptions {
    std::string name;
    std::string uri;
    std::string path;
};

ExitStatus addNamedQueue(const QueueOptions& options) {
    if (const std::string problem = queueNameProblem(options.name); !problem.empty()) {
        return unusable(printable(options.name) + ": " + problem);
    }
    if (!readUsableDescription(options.path)) {
        return ExitStatus::unusable;
    }
    std::string text;
    if (const std::error_code error = platform::system().ReadFile(options.path, mostDescription, text)) {
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
}

} // namespace torka::tool
