// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/QueueJobs.h"
#include "bidi/commands/SpoolerCommands.h"
#include "platform/SecretMemory.h"
#include "platform/System.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"

#include <iostream>
#include <iterator>
#include <memory>

namespace torka::tool {

namespace {

struct CommandOptions {
    std::string queue;
    std::string title;
    std::string text;
    bool isDetached = false;
};

// The title as given. Appends a new identifier when the command requires one at the end of its title.
std::string wholeTitle(const std::string& title) {
    const std::string longer = title + platform::system().CreateUuidString();
    return !commandFromTitle(title) && commandFromTitle(longer) ? longer : title;
}

// The queue that takes the command: of a class, its described printer where the pane sends it there, too.
std::string takingQueue(const std::string& queue, const std::string& title) {
    const std::optional<SpoolerCommand> command = commandFromTitle(title);
    if (!command || isForPrintJob(*command)) {
        return queue;
    }
    return utf8Text(PMPrinterGetName(describedPrinter(std::make_shared<CupsPrinter>(queue))));
}

ExitStatus sendCommand(const CommandOptions& options) {
    if (const std::string problem = platform::queueProblem(options.queue); !problem.empty()) {
        return unusable(problem);
    }
    std::string text = options.text;
    const platform::WipeGuard<std::string> guard(text); // it may hold a password
    if (text == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
    }
    const std::string title = wholeTitle(options.title);
    const std::string queue = takingQueue(options.queue, title);
    CupsPrinter printer(queue);
    if (printer.SendCommand(cfString(text), cfString(title), nullptr) != noErr) {
        return unusable(queue + ": the queue does not take the command");
    }
    print("Job " + std::to_string(printer.CommandJob()) + " on " + printable(queue) + ": " +
          printable(title) + "\n");
    return options.isDetached ? ExitStatus::good : followJob(queue, printer.CommandJob());
}

} // namespace

void addCommandCommand(CLI::App& app, ExitStatus& status) {
    CLI::App* group = app.add_subcommand("command", "Command jobs for a queue's filter");
    group->require_subcommand(1);
    describe(*group, {.examples = {"torka command send office Command_LocaleCode de"}});
    const auto options = std::make_shared<CommandOptions>();
    CLI::App* command = group->add_subcommand("send", "Send a command to a queue's filter and wait");
    command->add_option("QUEUE", options->queue, "Queue whose filter gets the command")->required();
    command->add_option("TITLE", options->title, "Command, such as Command_LocaleCode")->required();
    command->add_option("TEXT", options->text, "Text of the command; - for standard input")->required();
    command->add_flag("--no-wait", options->isDetached, "Do not wait for the job's end");
    describe(*command, {.examples = {"torka command send office Command_LocaleCode de"},
                        .findings = "the command failed"});
    command->callback([options, &status] { status = sendCommand(*options); });
}

} // namespace torka::tool
