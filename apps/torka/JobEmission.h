#pragma once

#include "apps/torka/Description.h"
#include "output/FeatureEmission.h"
#include "output/ZANWatermark.h"
#include "platform/memory/MemoryPrinting.h"

#include <CLI/App.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// From a description and a command line's settings to a filled job ticket: what emit and print share.

namespace torka::tool {

struct EmissionOptions {
    std::string description; // path
    std::vector<std::string> settings;
    std::string watermark; // definition, "" for none
    std::string keys;      // FieldKeys.plist, "" for the installed one
    std::uint16_t orientation = kPMPortrait;
};

// Adds SETTING, --watermark, --keys and --orientation. The path of the description is the command's own
// affair.
void addEmissionOptions(CLI::App& command, EmissionOptions& options);
// Reads the field keys that the command line names, or the installed ones, for the whole process. False, with
// one line on standard error, when the named file is unusable; without an installed file nothing is said
// until a note needs it.
bool useFieldKeys(const std::string& path);

// One job's settings on their way into its ticket. Owns the description and the ticket.
class JobEmission {
public:
    // Null, with one line on standard error, when the description or a setting is unusable. Without a session
    // there is no printer.
    static std::unique_ptr<JobEmission> Make(const EmissionOptions& options,
                                             PMPrintSession session = nullptr);
    JobEmission(const JobEmission&) = delete;
    JobEmission& operator=(const JobEmission&) = delete;
    ~JobEmission();

    // Fills the ticket and saves it. False, with one line on standard error, when it cannot be written.
    // Fields that are left out for want of keys are told on standard error.
    bool Emit(EmissionPurpose purpose);

    ZANPPD& Description() { return *description; }
    ZANJobTicket& Ticket() { return ticket; }
    const CFDataRef& Xml() const { return xml; }
    bool LeftOutNotes() const { return hasLeftOutNotes; }
    PMPrintSettings Settings() const { return settings; }

private:
    JobEmission(std::unique_ptr<ZANPPD> model, const EmissionOptions& options, PMPrintSession printSession);

    class Source;
    std::unique_ptr<ZANPPD> description;
    std::shared_ptr<MemoryPrintSettings> settings;
    PMPrintSession session;
    PrintSettingsTicket dictionaryTicket;
    ZANJobTicket ticket;
    ZANWatermark watermark;
    std::unique_ptr<Source> source;
    CFDataRef xml;
    bool hasLeftOutNotes = false;
};

} // namespace torka::tool
