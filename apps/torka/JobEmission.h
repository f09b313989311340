// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/Description.h"
#include "output/FeatureEmission.h"
#include "pane/data/PDEData.h"
#include "platform/cups/CupsQueue.h"
#include "platform/memory/MemoryPrinting.h"

#include <CLI/App.hpp>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Fills a job ticket from a description and the settings of a command line, for the commands emit and print.

namespace torka::tool {

enum class TwoWay { asKept, on, off };

struct EmissionOptions {
    std::string description; // path
    std::vector<std::string> settings;
    std::string watermark; // definition, "" for none
    std::string keys;      // FieldKeys.plist, "" for the installed one
    std::uint16_t orientation = kPMPortrait;
    std::string printSettings;     // path of the property list to restore from, "" for none
    std::string savePrintSettings; // path for the print settings that a pane would store, "" for none
    JobOptions jobOptions;         // of the print server, beside the ticket
    TwoWay twoWay = TwoWay::asKept;
    bool isStrict =
        false; // settings in conflict, a changed number and a note that breaks a rule stop the job
};

// Adds SETTING, --watermark, --keys, --orientation, --settings, --save-settings, --two-way and --strict. Each
// command sets the path of the description itself.
void addEmissionOptions(CLI::App& command, EmissionOptions& options);
// Installs the field keys of the named file, or the installed file when `path` is "", for the whole process.
// Fails when the named file is unusable. A missing installed file is no error here: Emit reports the notes
// that need it.
Result<void> useFieldKeys(const std::string& path);
// Fails when the text of --watermark has too few fields, or is no UTF-8. "" is no watermark.
Result<void> checkWatermark(const std::string& definition);

// Carries the settings of one job through a pane's data into the job's ticket. Owns the description, the data
// and the ticket. Reads the address list from the description; additions to the list stay in memory.
class JobEmission {
public:
    // Fails when the description, the print settings, the keys or a setting is unusable. Commands go to the
    // session's printer. Without a session nobody receives them.
    static Result<std::unique_ptr<JobEmission>> Make(const EmissionOptions& options,
                                                     PMPrintSession session = nullptr);
    JobEmission(const JobEmission&) = delete;
    JobEmission& operator=(const JobEmission&) = delete;
    ~JobEmission();

    // Fills and saves the ticket; writes the print settings when the options name a file. Fails when a file
    // cannot be written. Reports everything that it leaves out on standard error.
    Result<void> Emit(EmissionPurpose purpose);

    // Reports on standard error what the job lacks as far as it is known.
    void TellLeftOut() const;

    // Reports each number that was changed, each pair of settings that the description forbids
    // together, and every rule that a note's text breaks, one line each on standard error. False when there
    // is one and the options are strict: the caller must not emit the job.
    bool Check() const;
    // Applies the settings of the command line once more, after something else has set the description.
    void ApplySettings() { changedNumbers = applySettings(*description, chosen); }
    // Reports each number that was changed.
    void TellChangedNumbers() const;
    // Whether a number of the command line was changed to fit its bounds and steps.
    bool HasChangedNumbers() const { return !changedNumbers.empty(); }

    ZANPPD& Description() { return *description; }
    ZANJobTicket& Ticket() { return ticket; }
    const ZANJobTicket& Ticket() const { return ticket; }
    const CFDataRef& Xml() const { return xml; }
    struct LeftOut {
        std::string keyword; // "watermark" for the watermark
        std::string reason;
    };
    // What the job lacks. Before Emit only notes whose text the encoding in force cannot hold.
    const std::vector<LeftOut>& LeftOutEntries() const { return leftOut; }
    // The choices that belong among the job's options, because the system's own code prints them.
    std::vector<std::pair<std::string, std::string>> SystemChoices() const;
    PDEData& Data() { return *data; }

private:
    JobEmission(std::unique_ptr<ZANPPD> model, const EmissionOptions& options, PMPrintSession printSession);
    Result<void> RestorePrintSettings();
    void CheckText(const CFStringRef& key, const CFStringRef& text);
    void ApplyOptions();
    Result<void> TakeJobOptions();
    bool ReportConflicts() const;
    bool ReportBrokenNotes() const;
    Result<void> WritePrintSettings() const;

    EmissionOptions options;
    std::unique_ptr<ZANPPD> description;
    std::shared_ptr<MemoryPrintSettings> settings;
    PMPrintSession session;
    PrintSettingsTicket dictionaryTicket;
    ZANJobTicket ticket;
    std::unique_ptr<PDEData> data;
    CFDataRef xml;
    std::vector<LeftOut> leftOut;
    std::vector<Setting> chosen;
    std::vector<std::string> changedNumbers;
};

} // namespace torka::tool
