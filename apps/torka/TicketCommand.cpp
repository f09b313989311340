// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/TicketJson.h"
#include "spooler/TicketReader.h"

#include <memory>

namespace torka::tool {

namespace {

struct TicketOptions {
    std::string path;
    bool json = false;
};

ExitStatus showTicket(const TicketOptions& options) {
    const Result<Ticket> ticket = readTicketFile(options.path);
    if (!ticket) {
        return unusable(ticket.Why());
    }
    Json entries = Json::array();
    for (const TicketEntry& entry : ticket->entries) {
        if (options.json) {
            entries.push_back(entryJson(entry.site, entry.bytes));
        } else {
            printEntry(entry.site, entry.bytes);
        }
    }
    if (options.json) {
        Json json = Json::object();
        json["entries"] = std::move(entries);
        print(jsonDocument(json));
    }
    for (const TicketWarning& warning : ticket->warnings) {
        warn(options.path + ": entry " + std::to_string(warning.entry) + ": " + warning.text);
    }
    return ticket->warnings.empty() ? ExitStatus::good : ExitStatus::findings;
}

} // namespace

void addTicketCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<TicketOptions>();
    CLI::App* command = app.add_subcommand("ticket", "Print what a job ticket holds");
    command->add_option("FILE", options->path, "Ticket file (XML property list)")->required();
    command->add_flag("--json", options->json, "As JSON");
    describe(*command,
             {.examples = {"torka ticket ticket.plist"}, .findings = "the ticket holds an unknown site"});
    command->callback([options, &status] { status = showTicket(*options); });
}

} // namespace torka::tool
