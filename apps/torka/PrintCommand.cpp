// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "apps/torka/Command.h"
#include "apps/torka/CommandText.h"
#include "apps/torka/FilterLines.h"
#include "apps/torka/JobEmission.h"
#include "apps/torka/ManualTexts.h"
#include "apps/torka/PersonsLanguage.h"
#include "apps/torka/QueueJobs.h"
#include "bidi/commands/TicketCommands.h"
#include "output/BundleIdentifier.h"
#include "platform/System.h"
#include "platform/cups/CupsPrinting.h"
#include "platform/cups/CupsQueue.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <unistd.h>

namespace torka::tool {

namespace {

// The options that go to the print server in plain, beside the ticket's path. The server keeps such options
// in the spool folder and in the job's attributes, where others can read them.
constexpr std::string_view standardOptions[] = {"copies",        "sides",       "media",   "number-up",
                                                "print-quality", "page-ranges", "collate", "fit-to-page"};

struct PrintOptions {
    std::string queue;
    std::string file;
    std::string title;
    std::vector<std::string> jobOptions; // NAME=VALUE
    EmissionOptions emission;
    bool isDetached = false;
    bool allowsLeftOut = false; // prints although a note's text cannot be sent
};

Result<JobOptions> readJobOptions(const std::vector<std::string>& texts) {
    JobOptions options;
    for (const std::string& text : texts) {
        const std::size_t equals = std::min(text.find('='), text.size());
        const std::string name = text.substr(0, equals);
        if (std::ranges::find(standardOptions, name) == std::end(standardOptions)) {
            return Fault{"'" + text +
                         "' is no option of the print server that can be given: copies, sides, media, "
                         "number-up, print-quality, page-ranges, collate, fit-to-page; everything else is a "
                         "setting, KEY=VALUE"};
        }
        const bool isTruth = name == "collate" || name == "fit-to-page";
        if (equals == text.size() && !isTruth) {
            return Fault{"'" + text + "' lacks its value: NAME=VALUE is meant"};
        }
        options.emplace_back(name, equals == text.size() ? "true" : text.substr(equals + 1)); // as lp does
    }
    return options;
}

// Adds the page size that the job's PostScript names, because the server's own filters lay out pages by it.
// When the command line names a medium, adds only a page size other than the default.
void addPageSize(const ZANPPD& description, JobOptions& options) {
    const PPDXPopupControl* pageSize = description.GetControls()->FindPopup("*PageSize", true);
    const std::string value = utf8Text(description.CopyValueForKey(cfString("*PageSize")));
    if (pageSize == nullptr || value.empty()) {
        return;
    }
    const bool namesMedium =
        std::ranges::any_of(options, [](const auto& option) { return option.first == "media"; });
    const char* const standard = pageSize->GetDefaultKeyword();
    if (!namesMedium || standard == nullptr || value != standard) {
        options.emplace_back("PageSize", value);
    }
}

// The print settings go ahead of the job in command jobs. Without a line for these, the server's own filters
// take them and the job prints without its settings. Another program's line may call torkafilter: the job is
// sent, and `isDoubtful` set. A description that cannot be read is told by its reader.
Result<void> checkFilterLines(const std::string& queue, const std::string& path, bool& isDoubtful) {
    std::string text;
    if (platform::system().ReadFile(path, maximumDescription, text)) {
        return {};
    }
    for (const FilterLine& line : filterLineFaults(text)) {
        if (line.CallsNone()) {
            const auto state = platform::queueState(queue);
            const std::string remedy = "torka queue add " + queue + " " + (state ? state->deviceUri : "URI") +
                                       " FILE.ppd writes both lines of torkafilter";
            return Fault{line.type +
                             " does not go through torkafilter, so that the job would lose its print "
                             "settings; nothing is sent (" +
                             remedy + ")",
                         queue};
        }
        isDoubtful = true;
        warn(queue + ": " + line.type + " goes through " + line.program +
             ": the job loses its print settings unless this program calls torkafilter");
    }
    return {};
}

// Names the job and follows it. Says `shortage` without memory: the job is in the queue all the same.
ExitStatus tellJob(const PrintOptions& options, const std::string& queue, int job,
                   const std::string& shortage) {
    try {
        print(printable(inPersonsLanguage("Job " + std::to_string(job) + " on " + queue)) + "\n");
        return options.isDetached ? ExitStatus::good : followJob(queue, job);
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "torka: %s\n", shortage.c_str());
        return ExitStatus::findings;
    }
}

ExitStatus printFile(const PrintOptions& options) {
    Result<JobOptions> given = readJobOptions(options.jobOptions);
    if (!given) {
        return unusable(given.Why());
    }
    JobOptions& jobOptions = *given;
    std::error_code unreadable;
    if (std::filesystem::is_directory(options.file, unreadable)) {
        unreadable = std::make_error_code(std::errc::is_a_directory);
    } else if (access(options.file.c_str(), R_OK) != 0) {
        unreadable = std::error_code(errno, std::generic_category());
    }
    if (unreadable) {
        return unusable(options.file + ": cannot be read: " + unreadable.message());
    }
    if (const std::string problem = platform::queueProblem(options.queue); !problem.empty()) {
        return unusable(problem);
    }
    const auto session = std::make_shared<CupsSession>(options.queue);
    PMPrinter printer;
    if (PMSessionGetCurrentPrinter(session, printer) != noErr) {
        return unusable("the print server has no queue " + options.queue);
    }
    const std::string queue = utf8Text(PMPrinterGetName(printer));
    CFURLRef url;
    if (PMPrinterCopyDescriptionURL(printer, cfString("PMPPDDescriptionType"), url) != noErr) {
        return unusable(queue + ": the queue has no description");
    }
    EmissionOptions emission = options.emission;
    emission.description = CFURLCopyFileSystemPath(url);
    bool isDoubtful = false;
    if (const Result<void> checked = checkFilterLines(queue, emission.description, isDoubtful); !checked) {
        return unusable(checked.Why());
    }
    emission.jobOptions = jobOptions;
    const auto made = JobEmission::Make(emission, session);
    if (!made) {
        return unusable(made.Why());
    }
    const std::unique_ptr<JobEmission>& settings = *made;
    if (!settings->Check()) {
        return ExitStatus::findings;
    }
    if (!options.allowsLeftOut && !settings->LeftOutEntries().empty()) {
        settings->TellLeftOut();
        warn("nothing is sent (--allow-left-out prints without it)");
        return ExitStatus::findings;
    }
    if (const Result<void> emitted = settings->Emit(EmissionPurpose::printJob); !emitted) {
        return unusable(emitted.Why());
    }
    const CFStringRef ticket = settings->Ticket().FileName();
    if (sendTicketAhead(printer, ticket, settings->Xml()) != noErr) {
        return unusable(queue + ": the queue does not take the print settings");
    }
    jobOptions.emplace_back(ticketPathSetting, utf8Text(ticket));
    addPageSize(settings->Description(), jobOptions);
    for (auto& choice : settings->SystemChoices()) {
        if (choice.first != "PageSize") {
            jobOptions.push_back(std::move(choice));
        }
    }
    const std::string title =
        options.title.empty() ? std::filesystem::path(options.file).filename().string() : options.title;
    const std::string shortage = printable(inPersonsLanguage(
        "the job is in the queue; there is not enough memory to follow it")); // made in time
    const Result<int> job = submitFile(queue, options.file, title, jobOptions);
    if (!job) {
        return unusable(queue + ": the job is not taken: " + job.Why().Line());
    }
    const ExitStatus status = tellJob(options, queue, *job, shortage);
    const bool hasFindings =
        isDoubtful || settings->HasChangedNumbers() || !settings->LeftOutEntries().empty();
    return status == ExitStatus::good && hasFindings ? ExitStatus::findings : status;
}

} // namespace

void addPrintCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<PrintOptions>();
    CLI::App* command = app.add_subcommand("print", "Print a document with settings on a queue");
    command->add_option("-d,--queue", options->queue, "Queue; otherwise the default queue")
        ->option_text("QUEUE");
    command->add_option("FILE", options->file, "Document, of any kind that the queue takes")->required();
    command->add_option("-o", options->jobOptions, "Option of the print server: copies, sides, media, ...")
        ->option_text("NAME=VALUE")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->add_option("--title", options->title, "Title of the job; otherwise the file's name")
        ->option_text("TEXT");
    command->add_flag("--no-wait", options->isDetached, "Do not wait for the job's end");
    command->add_flag("--allow-left-out", options->allowsLeftOut,
                      "Print without a note that the encoding cannot hold");
    addEmissionOptions(*command, options->emission);
    describe(*command,
             {.examples = {"torka print -d office samples/brochure.ps QVDuplex=LongEdge",
                           "printf %s secret | torka print -d office samples/brochure.ps DeptPassword=@-"},
              .findings = "the job failed, it lacks a field, a number does not fit, --strict refuses, "
                          "or another filter takes the documents",
              .details = std::string(leftOutDetails)});
    command->callback([options, &status] { status = printFile(*options); });
}

} // namespace torka::tool
