// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/JobEmission.h"
#include "apps/torka/ManualTexts.h"
#include "apps/torka/TicketJson.h"
#include "platform/adapters/Adapters.h"
#include "spooler/SpliceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <unistd.h>

namespace torka::tool {

namespace {

struct EmitOptions {
    EmissionOptions emission;
    std::string ticket;
    std::string document;
    std::string output;
    int minorVersion = 15;
    bool json = false;
};

void printReport(const SpliceReport& report) {
    for (const auto& [site, placed] : report.placed) {
        print("Site " + std::to_string(site) + ": " + std::to_string(placed.entries) + " entries, " +
              std::to_string(placed.bytes) + " bytes " + std::string(placeText(placed.place)) + "\n");
    }
    for (const auto& [keyword, count] : report.removed) {
        if (count == 0) {
            continue;
        }
        print("Removed: " + std::to_string(count) + " of " + printable(keyword) + "\n");
    }
    for (const std::string& path : report.mailboxPaths) {
        print("File destination: " + printable(path) + "\n");
    }
    for (const UnplacedEntry& entry : report.unplaced) {
        warn("entry " + std::to_string(entry.entry) + " was not placed: " + entry.reason);
    }
    for (const std::string& warning : report.warnings) {
        warn(warning);
    }
}

// Shows the progress in one line that each call overwrites, on a terminal only.
bool showProgress(std::uint64_t bytesRead) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r%llu MB", static_cast<unsigned long long>(bytesRead / 1'000'000));
    }
    return true;
}

ExitStatus spliceInto(const EmitOptions& options, const CFDataRef& xml) {
    Result<Ticket> ticket = readTicket(CFDataGetBytes(xml));
    if (!ticket) {
        return unusable(ticket.Why());
    }
    std::string description;
    if (const std::error_code error = platform::system().ReadFile(
            options.emission.description, std::numeric_limits<std::size_t>::max(), description)) {
        return unusable(options.emission.description + ": cannot be read: " + error.message());
    }
    ticket->unguarded = unguardedNotes(description);
    const SpliceOutcome outcome = spliceFile(options.document, *ticket, options.output, showProgress);
    if (outcome.status != SpliceStatus::ok) {
        return unusable(outcome.errorText);
    }
    if (!options.json) {
        printReport(outcome.report);
    }
    return outcome.report.unplaced.empty() ? ExitStatus::good : ExitStatus::findings;
}

ExitStatus writeTicket(const std::string& path, const CFDataRef& xml) {
    const std::span<const std::uint8_t> bytes = CFDataGetBytes(xml);
    constexpr unsigned mode = 0600;
    const std::error_code error =
        platform::system().WriteFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()}, mode);
    return error ? unusable(path + ": cannot be written: " + error.message()) : ExitStatus::good;
}

void printEntries(const JobEmission& job, bool asJson) {
    Json entries = Json::array();
    for (const ZANJobTicket::Entry& entry : job.Ticket().Entries()) {
        if (!asJson) {
            printEntry(entry.site, entry.bytes);
            continue;
        }
        Json json = entryJson(entry.site, entry.bytes);
        if (entry.isProtected) {
            json["protected"] = true;
        }
        entries.push_back(std::move(json));
    }
    if (asJson) {
        Json json = Json::object();
        json["entries"] = std::move(entries);
        Json leftOut = Json::array();
        for (const JobEmission::LeftOut& entry : job.LeftOutEntries()) {
            Json left = Json::object();
            left["keyword"] = jsonText(entry.keyword.c_str());
            left["reason"] = entry.reason;
            leftOut.push_back(std::move(left));
        }
        if (!leftOut.empty()) {
            json["leftOut"] = std::move(leftOut);
        }
        print(jsonDocument(json));
    }
}

ExitStatus emit(const EmitOptions& options) {
    if (options.document.empty() != options.output.empty()) {
        return unusable("--splice IN.ps and --output OUT.ps belong together");
    }
    platform::AdapterOptions adapters;
    adapters.system.minorVersion = options.minorVersion;
    platform::chooseAdapters(std::move(adapters));

    const auto made = JobEmission::Make(options.emission);
    if (!made) {
        return unusable(made.Why());
    }
    const std::unique_ptr<JobEmission>& job = *made;
    if (!job->Check()) {
        return ExitStatus::findings;
    }
    if (const Result<void> emitted = job->Emit(EmissionPurpose::keepSettings); !emitted) {
        return unusable(emitted.Why());
    }
    if (!options.ticket.empty()) {
        if (const ExitStatus status = writeTicket(options.ticket, job->Xml()); status != ExitStatus::good) {
            return status;
        }
    }
    printEntries(*job, options.json);
    const ExitStatus status = options.document.empty() ? ExitStatus::good : spliceInto(options, job->Xml());
    const bool hasFindings = job->HasChangedNumbers() || !job->LeftOutEntries().empty();
    return status == ExitStatus::good && hasFindings ? ExitStatus::findings : status;
}

} // namespace

void addEmitCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<EmitOptions>();
    CLI::App* command = app.add_subcommand("emit", "Turn settings into a ticket and a spliced document");
    command->add_option("PPD", options->emission.description, "Extended PPD file")->required();
    addEmissionOptions(*command, options->emission);
    command->add_option("--ticket", options->ticket, "Write the ticket to this file")->option_text("FILE");
    command->add_option("--splice", options->document, "Put the entries into this PostScript document")
        ->option_text("FILE");
    command->add_option("--output", options->output, "Where the spliced document goes")->option_text("FILE");
    command->add_option("--os-minor", options->minorVersion, "Minor version of the system, selects paths")
        ->check(CLI::Range(0, 99));
    command->add_flag("--json", options->json, "As JSON");
    describe(*command,
             {.examples = {"torka emit samples/torka-production.ppd PageSize=A4 --ticket ticket.plist",
                           "torka emit samples/torka-production.ppd "
                           "--splice samples/brochure.ps --output job.ps"},
              .findings = "the job lacks an entry or a field, a number does not fit, or --strict refuses",
              .details = std::string(leftOutDetails)});
    command->callback([options, &status] { status = emit(*options); });
}

} // namespace torka::tool
