#include "apps/torka/Command.h"
#include "apps/torka/TicketJson.h"
#include "output/FeatureEmission.h"
#include "output/ZANWatermark.h"
#include "platform/System.h"
#include "platform/memory/MemoryPrinting.h"
#include "platform/posix/PosixSystem.h"
#include "spooler/SpliceFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace torka::tool {

namespace {

struct EmitOptions {
    std::string path;
    std::vector<std::string> settings;
    std::string ticket;
    std::string document;
    std::string output;
    std::string watermark;
    std::uint16_t orientation = kPMPortrait;
    int minorVersion = 15;
    bool json = false;
};

// The description and what the command line says, with nothing that only a pane could know.
class DescriptionSource final : public EmissionSource {
public:
    // `selectedWatermark` may be null.
    DescriptionSource(ZANPPD& model, PMPrintSettings printSettings, std::uint16_t pageOrientation,
                      ZANWatermark* selectedWatermark)
        : description(model)
        , settings(std::move(printSettings))
        , orientation(pageOrientation)
        , watermark(selectedWatermark) {}

    ZANPPD* Description() const override { return &description; }
    PMPrintSettings Settings() const override { return settings; }
    std::uint16_t PageOrientation() const override { return orientation; }
    bool IsPageSizeSuppressed() const override { return false; }
    bool IsTwoWayEnabled() const override { return false; }
    std::span<const WideSetting> MixedMedia() const override { return {}; }
    std::span<const WideSetting> PadCovers() const override { return {}; }
    std::span<const WideSetting> SlipSheets() const override { return {}; }
    std::span<const WideSetting> CoverPages() const override { return {}; }
    std::span<const WideSetting> PaperCatalogue() const override { return {}; }
    ZANWatermark* SelectedWatermark() const override { return watermark; }

private:
    ZANPPD& description;
    PMPrintSettings settings;
    std::uint16_t orientation;
    ZANWatermark* watermark;
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

// A line that is written over as the work goes on, when a person watches.
bool showProgress(std::uint64_t bytesRead) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r%llu MB", static_cast<unsigned long long>(bytesRead / 1'000'000));
    }
    return true;
}

ExitStatus spliceInto(const EmitOptions& options, const CFDataRef& xml) {
    const TicketResult ticket = readTicket(CFDataGetBytes(xml));
    if (ticket.error) {
        return unusable(ticket.error.text);
    }
    const SpliceOutcome outcome = spliceFile(options.document, ticket.ticket, options.output, showProgress);
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

void printEntries(const ZANJobTicket& ticket, bool asJson) {
    Json entries = Json::array();
    for (const ZANJobTicket::Entry& entry : ticket.Entries()) {
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
        Json json;
        json["entries"] = std::move(entries);
        print(jsonDocument(json));
    }
}

ExitStatus emit(const EmitOptions& options) {
    if (options.document.empty() != options.output.empty()) {
        return unusable("--splice IN.ps and --output OUT.ps belong together");
    }
    const auto description = readUsableDescription(options.path);
    std::vector<Setting> settings;
    if (!description || !parseSettings(*description, options.settings, settings)) {
        return ExitStatus::unusable;
    }
    applySettings(*description, settings);

    platform::PosixSystemOptions systemOptions;
    systemOptions.minorVersion = options.minorVersion;
    systemOptions.rootFromEnvironment = true;
    platform::setSystem(std::make_unique<platform::PosixSystem>(systemOptions));

    const auto printSettings = std::make_shared<MemoryPrintSettings>();
    const auto session = std::make_shared<MemorySession>();
    PrintSettingsTicket dictionaryTicket(session, printSettings);
    ZANJobTicket ticket(&dictionaryTicket, printSettings, cfString("ZAN.PSData"));
    ZANWatermark watermark(options.watermark.c_str());
    const DescriptionSource source(*description, printSettings, options.orientation,
                                   options.watermark.empty() ? nullptr : &watermark);
    FeatureEmission(source, ticket, session, EmissionPurpose::keepSettings).OutPostscriptData();
    const CFDataRef xml = ticket.Save();
    if (ticket.SaveError()) {
        return unusable("the ticket cannot be written: " + ticket.SaveError().message());
    }
    if (!options.ticket.empty()) {
        if (const ExitStatus status = writeTicket(options.ticket, xml); status != ExitStatus::good) {
            return status;
        }
    }
    printEntries(ticket, options.json);
    return options.document.empty() ? ExitStatus::good : spliceInto(options, xml);
}

} // namespace

void addEmitCommand(CLI::App& app, ExitStatus& status) {
    const auto options = std::make_shared<EmitOptions>();
    CLI::App* command =
        app.add_subcommand("emit", "Turn settings into a job ticket, and splice it into a document");
    command->add_option("FILE", options->path, "Extended PPD file")->required();
    command->add_option("SETTING", options->settings, "KEY=VALUE, the key with or without its asterisk");
    command->add_option("--ticket", options->ticket, "Write the ticket to this file");
    command->add_option("--splice", options->document, "PostScript document to put the entries into");
    command->add_option("--output", options->output, "Where the spliced document goes");
    command->add_option("--watermark", options->watermark, "Watermark definition (docs/watermarks.md)");
    command
        ->add_option("--orientation", options->orientation,
                     "1 portrait, 2 landscape, 3 and 4 the same upside down")
        ->check(CLI::Range(1, 4));
    command
        ->add_option("--os-minor", options->minorVersion, "Minor version of the system, which selects paths")
        ->check(CLI::Range(0, 99));
    command->add_flag("--json", options->json, "As JSON");
    command->callback([options, &status] { status = emit(*options); });
}

} // namespace torka::tool
