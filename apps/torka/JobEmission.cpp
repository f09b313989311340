#include "apps/torka/JobEmission.h"

#include "ZANUtils/FieldKeys.h"
#include "apps/torka/Command.h"
#include "output/BundleIdentifier.h"

#include <filesystem>
#include <utility>

namespace torka::tool {

// The description and what the command line says, with nothing that only a pane could know.
class JobEmission::Source final : public EmissionSource {
public:
    Source(ZANPPD& model, PMPrintSettings printSettings, std::uint16_t pageOrientation,
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

void addEmissionOptions(CLI::App& command, EmissionOptions& options) {
    command.add_option("SETTING", options.settings, "KEY=VALUE, the key with or without its asterisk");
    command.add_option("--watermark", options.watermark, "Watermark definition (docs/watermarks.md)");
    command.add_option("--keys", options.keys,
                       "Keys for protected fields (docs/field-protection.md) instead of the installed ones");
    command
        .add_option("--orientation", options.orientation,
                    "1 portrait, 2 landscape, 3 and 4 the same upside down")
        ->check(CLI::Range(1, 4));
}

bool useFieldKeys(const std::string& path) {
    std::string error;
    const auto keys = path.empty() ? FieldKeys::LoadInstalled(error) : FieldKeys::Load(path, error);
    if (!keys && !path.empty()) {
        warn(error);
        return false;
    }
    installFieldKeys(keys);
    return true;
}

std::unique_ptr<JobEmission> JobEmission::Make(const EmissionOptions& options, PMPrintSession session) {
    auto description = readUsableDescription(options.description);
    std::vector<Setting> settings;
    if (!description || !parseSettings(*description, options.settings, settings) ||
        !useFieldKeys(options.keys)) {
        return nullptr;
    }
    applySettings(*description, settings);
    return std::unique_ptr<JobEmission>(new JobEmission(
        std::move(description), options, session ? std::move(session) : std::make_shared<MemorySession>()));
}

JobEmission::JobEmission(std::unique_ptr<ZANPPD> model, const EmissionOptions& options,
                         PMPrintSession printSession)
    : description(std::move(model))
    , settings(std::make_shared<MemoryPrintSettings>())
    , session(std::move(printSession))
    , dictionaryTicket(session, settings)
    , ticket(&dictionaryTicket, settings, cfString(ticketPathSetting))
    , watermark(options.watermark.c_str())
    , source(std::make_unique<Source>(*description, settings, options.orientation,
                                      options.watermark.empty() ? nullptr : &watermark)) {}

JobEmission::~JobEmission() = default;

bool JobEmission::Emit(EmissionPurpose purpose) {
    FeatureEmission emission(*source, ticket, session, purpose);
    emission.OutPostscriptData();
    for (const ZANJobNoteList::LeftOutNote& note : emission.LeftOutNotes()) {
        hasLeftOutNotes = true;
        warn(note.keyword + " is left out of the job: " +
             (note.reason == LeftOutReason::noFieldKeys
                  ? "it is protected and no keys are installed (--keys FILE)"
                  : "it is too long to be protected"));
    }
    xml = ticket.Save();
    if (ticket.SaveError()) {
        warn("the ticket cannot be written: " + ticket.SaveError().message());
        return false;
    }
    return true;
}

} // namespace torka::tool
