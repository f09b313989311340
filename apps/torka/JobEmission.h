#pragma once

#include "apps/torka/Description.h"
#include "output/FeatureEmission.h"
#include "pane/data/PDEData.h"
#include "platform/memory/MemoryPrinting.h"

#include <CLI/App.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// From a description and a command line's settings to a filled job ticket: what emit and print share.

namespace torka::tool {

enum class TwoWay { asKept, on, off };

struct EmissionOptions {
    std::string description; // path
    std::vector<std::string> settings;
    std::string watermark; // definition, "" for none
    std::string keys;      // FieldKeys.plist, "" for the installed one
    std::uint16_t orientation = kPMPortrait;
    std::string printSettings;     // property list to restore from, "" for none
    std::string savePrintSettings; // where to write what a pane would store, "" for nowhere
    TwoWay twoWay = TwoWay::asKept;
    bool isStrict = false; // a note that breaks a rule stops the job
};

// Adds SETTING, --watermark, --keys, --orientation, --settings, --save-settings, --two-way and --strict. The
// path of the description is the command's own affair.
void addEmissionOptions(CLI::App& command, EmissionOptions& options);
// Reads the field keys that the command line names, or the installed ones, for the whole process. False, with
// one line on standard error, when the named file is unusable; without an installed file nothing is said
// until a note needs it.
bool useFieldKeys(const std::string& path);

// One job's settings on their way into its ticket, by way of a pane's data. Owns the description, the data
// and the ticket. The address list is read from the description; what is added to it stays in memory.
class JobEmission {
public:
    // Null, with one line on standard error, when the description, the print settings or a setting is
    // unusable. Commands go to the session's printer, to nobody without one.
    static std::unique_ptr<JobEmission> Make(const EmissionOptions& options,
                                             PMPrintSession session = nullptr);
    JobEmission(const JobEmission&) = delete;
    JobEmission& operator=(const JobEmission&) = delete;
    ~JobEmission();

    // Fills the ticket and saves it, and writes the print settings where they are asked for. False, with one
    // line on standard error, when something cannot be written. Fields that are left out for want of keys are
    // told on standard error.
    bool Emit(EmissionPurpose purpose);

    // Tells the rules that the notes' texts break, one line on standard error each. False when there is one
    // and the options are strict: the job is then not to be emitted.
    bool CheckNotes() const;

    ZANPPD& Description() { return *description; }
    ZANJobTicket& Ticket() { return ticket; }
    const CFDataRef& Xml() const { return xml; }
    bool LeftOutNotes() const { return hasLeftOutNotes; }
    PMPrintSettings Settings() const { return settings; }
    PDEData& Data() { return *data; }

private:
    JobEmission(std::unique_ptr<ZANPPD> model, const EmissionOptions& options, PMPrintSession printSession);
    bool RestorePrintSettings();
    void ApplyOptions();
    bool WritePrintSettings() const;

    EmissionOptions options;
    std::unique_ptr<ZANPPD> description;
    std::shared_ptr<MemoryPrintSettings> settings;
    PMPrintSession session;
    PrintSettingsTicket dictionaryTicket;
    ZANJobTicket ticket;
    std::unique_ptr<PDEData> data;
    CFDataRef xml;
    bool hasLeftOutNotes = false;
};

} // namespace torka::tool
