// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/JobEmission.h"

#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "ZANUtils/FieldKeys.h"
#include "apps/torka/Command.h"
#include "jobsettings/Findings.h"
#include "jobsettings/ServerOptions.h"
#include "jobsettings/SettingCheck.h"
#include "output/BundleIdentifier.h"
#include "platform/PropertyList.h"
#include "platform/System.h"

#include <algorithm>
#include <filesystem>
#include <utility>

namespace torka::tool {

namespace {

constexpr std::size_t printSettingsLimit = std::size_t{64} * 1024 * 1024;
constexpr unsigned printSettingsMode = 0600;

// A session with a queue in memory. The queue has the name of the description's file, because the spooler
// stores the description of a queue as QUEUE.ppd.
std::shared_ptr<MemorySession> sessionOf(const std::string& descriptionPath) {
    const auto printer = std::make_shared<MemoryPrinter>();
    printer->name = std::filesystem::path(descriptionPath).stem().string();
    printer->ppdPath = descriptionPath;
    return std::make_shared<MemorySession>(printer);
}

std::string words(LeftOutReason reason) {
    return leftOutReason(reason) + (reason == LeftOutReason::noFieldKeys ? " (--keys FILE)" : "");
}

CFStringRef printerName(const PMPrintSession& session) {
    PMPrinter printer;
    PMSessionGetCurrentPrinter(session, printer);
    return PMPrinterGetName(printer);
}

Result<CFDictionaryRef> readPrintSettings(const std::string& path) {
    std::string content;
    if (const std::error_code error = platform::system().ReadFile(path, printSettingsLimit, content)) {
        return Fault{"cannot be read: " + error.message(), path};
    }
    std::string reason = "it holds no dictionary of print settings";
    const CFPropertyListRef list =
        CFPropertyListCreateFromXMLData(CFDataCreate(content.data(), content.size()), &reason);
    const CFDictionaryRef values = cfCast<CFDictionary>(list);
    if (!values) {
        return Fault{"cannot be used: " + (list ? "it holds no dictionary of print settings" : reason), path};
    }
    return values;
}

} // namespace

void addEmissionOptions(CLI::App& command, EmissionOptions& options) {
    command.add_option("SETTING", options.settings, settingHelp)->option_text("KEY=VALUE");
    command.add_option("--settings", options.printSettings, "Print settings of a dialog, to start from")
        ->option_text("FILE");
    command
        .add_option("--save-settings", options.savePrintSettings,
                    "Write what the pane would store to this file")
        ->option_text("FILE");
    const auto takeTwoWay = [&options](const std::string& word) {
        options.twoWay = word == "on" ? TwoWay::on : TwoWay::off;
    };
    command
        .add_option_function<std::string>("--two-way", takeTwoWay,
                                          "Two-way communication; otherwise the queue's")
        ->option_text("on|off")
        ->check(CLI::IsMember({"on", "off"}));
    command.add_option("--watermark", options.watermark, "Definition of a watermark")
        ->option_text("DEFINITION");
    command.add_option("--keys", options.keys, "Keys for protected fields; else the installed ones")
        ->option_text("FILE");
    command.add_option("--orientation", options.orientation, "1 portrait, 2 landscape, 3 and 4 upside down")
        ->check(CLI::Range(1, 4));
    command.add_flag("--strict", options.isStrict, "Do nothing when settings conflict or do not fit");
}

Result<void> useFieldKeys(const std::string& path) {
    if (path.empty()) {
        if (const Result<void> installed = useInstalledFieldKeys(); !installed) {
            warn(installed.Why().Line());
        }
        return {};
    }
    const auto keys = FieldKeys::Load(path);
    if (!keys) {
        return keys.Why();
    }
    installFieldKeys(*keys);
    return {};
}

Result<void> checkWatermark(const std::string& definition) {
    if (!apps::isUtf8(definition)) {
        return Fault{std::string("--watermark") + " has a value that is no UTF-8"};
    }
    const bool isTooLong = definition.size() >= watermarkDefinitionSize; // told with what the job lacks
    return definition.empty() || isTooLong || isWatermarkDefinition(definition)
               ? Result<void>()
               : Fault{"--watermark takes a definition, 14 fields and a text with a comma behind each field, "
                       "not " +
                       definition + " (docs/watermarks.md)"};
}

Result<std::unique_ptr<JobEmission>> JobEmission::Make(const EmissionOptions& options,
                                                       PMPrintSession session) {
    auto description = readUsableDescription(options.description);
    if (!description) {
        return description.Why();
    }
    auto chosen = parseSettings(**description, options.settings);
    if (!chosen) {
        return chosen.Why();
    }
    if (const Result<void> checked = checkWatermark(options.watermark); !checked) {
        return checked.Why();
    }
    if (const Result<void> keys = useFieldKeys(options.keys); !keys) {
        return keys.Why();
    }
    std::unique_ptr<JobEmission> job(new JobEmission(
        *std::move(description), options, session ? std::move(session) : sessionOf(options.description)));
    if (const Result<void> restored = job->RestorePrintSettings(); !restored) {
        return restored.Why();
    }
    job->chosen = *std::move(chosen);
    job->ApplySettings();
    for (const Setting& setting : job->chosen) {
        job->CheckText(cfString(setting.key), cfString(setting.value));
    }
    job->ApplyOptions();
    if (const Result<void> taken = job->TakeJobOptions(); !taken) {
        return taken.Why();
    }
    return job;
}

JobEmission::JobEmission(std::unique_ptr<ZANPPD> model, const EmissionOptions& emissionOptions,
                         PMPrintSession printSession)
    : options(emissionOptions)
    , description(std::move(model))
    , settings(std::make_shared<MemoryPrintSettings>())
    , session(std::move(printSession))
    , dictionaryTicket(session, settings)
    , ticket(&dictionaryTicket, settings, cfString(ticketPathSetting))
    , data(std::make_unique<PDEData>(
          description.get(), printerName(session), QueueAccess{session, {}},
          [path = options.description] { return std::make_unique<DescriptionPropertyListStore>(path); })) {
    data->SetPrintSettings(settings);
    data->SetPageFormat(std::make_shared<MemoryPageFormat>(options.orientation));
    data->GetWatermarksFromPreferences();
}

JobEmission::~JobEmission() = default;

Result<void> JobEmission::RestorePrintSettings() {
    if (!options.printSettings.empty()) {
        const Result<CFDictionaryRef> values = readPrintSettings(options.printSettings);
        if (!values) {
            return values.Why();
        }
        for (const auto& [key, value] : (*values)->Pairs()) {
            settings->SetValue(key, value, false);
            CheckText(key, cfCast<CFString>(value));
        }
        description->SetAllValues(*values);
    }
    data->RestoreNonPSSettings();
    data->TakeTemplate();
    return {};
}

void JobEmission::ApplyOptions() {
    if (options.twoWay != TwoWay::asKept) {
        data->SetIPAddressEnabled(options.twoWay == TwoWay::on);
    }
    if (!options.watermark.empty()) {
        WatermarkList& watermarks = data->Watermarks();
        watermarks.Append(std::make_unique<ZANWatermark>(options.watermark.c_str()));
        watermarks.Select(static_cast<int>(watermarks.Count()) - 1);
    }
}

// A note whose text cannot be converted leaves empty. The last text of a note counts.
void JobEmission::CheckText(const CFStringRef& key, const CFStringRef& text) {
    const auto* note = dynamic_cast<const PPDXJobNote*>(description->GetPPDXControlForKey(key));
    if (note == nullptr || !text) {
        return;
    }
    const std::string keyword = utf8Text(key);
    std::erase_if(leftOut, [&keyword](const LeftOut& entry) { return entry.keyword == keyword; });
    if (const std::string reason = lostTextReason(*description, *note, utf8Text(text)); !reason.empty()) {
        leftOut.push_back({keyword, printable(reason)});
    }
}

void JobEmission::TellLeftOut() const {
    for (const LeftOut& entry : leftOut) {
        warn(printable(jsonText(entry.keyword.c_str())) + " is left out of the job: " + entry.reason);
    }
}

// The job's own settings repeat what the server is told of the layout and the sides.
Result<void> JobEmission::TakeJobOptions() {
    for (const auto& [name, value] : options.jobOptions) {
        const Result<void> taken = name == "number-up" ? takePagesPerSheet(*description, *settings, value)
                                   : name == "sides"   ? takeSides(*description, value)
                                   : name == "media"   ? takeMedia(*description, value)
                                                       : Result<void>();
        if (!taken) {
            return taken.Why();
        }
    }
    return {};
}

void JobEmission::TellChangedNumbers() const {
    for (const std::string& change : changedNumbers) {
        warn(change);
    }
}

bool JobEmission::Check() const {
    TellChangedNumbers();
    const bool hasConflicts = ReportConflicts();
    const bool hasBrokenNotes = ReportBrokenNotes();
    return !options.isStrict || !(hasConflicts || hasBrokenNotes || HasChangedNumbers());
}

bool JobEmission::ReportConflicts() const {
    const std::vector<std::string> conflicts = conflictTexts(*description);
    for (const std::string& conflict : conflicts) {
        warn(conflict);
    }
    return !conflicts.empty();
}

bool JobEmission::ReportBrokenNotes() const {
    bool hasBrokenNotes = false;
    description->GetControls()->ForEach([&](PPDXControl* control) {
        const auto* note = dynamic_cast<const PPDXJobNote*>(control);
        if (note == nullptr || note->Keyword() == nullptr) {
            return;
        }
        for (const std::string& broken : brokenRuleTexts(*note)) {
            hasBrokenNotes = true;
            warn(broken);
        }
    });
    return hasBrokenNotes;
}

Result<void> JobEmission::Emit(EmissionPurpose purpose) {
    data->SaveNonPSSettings();
    data->OutPostscriptData(ticket, session, purpose);
    for (const ZANJobNoteList::LeftOutNote& note : data->LeftOutNotes()) {
        leftOut.push_back({note.keyword, words(note.reason)});
    }
    for (const LeftOutSetting& setting : data->LeftOutSettings()) {
        leftOut.push_back({setting.keyword, leftOutReason(setting)});
    }
    TellLeftOut();
    ticket.SavePPDForAllKeys(description.get(), cfString(bundleIdentifier));
    if (gMemoryShortages != 0) {
        return Fault{"there is not memory enough for all settings"};
    }
    xml = ticket.Save();
    if (ticket.SaveError()) {
        return Fault{"the ticket cannot be written: " + ticket.SaveError().message()};
    }
    return options.savePrintSettings.empty() ? Result<void>() : WritePrintSettings();
}

std::vector<std::pair<std::string, std::string>> JobEmission::SystemChoices() const {
    return systemChoices(settings->Value(cfString(systemChoicesSetting)));
}

// Leaves out secret notes, which never go into a file, and what holds for one job: the path of the ticket and
// the choices of the system.
Result<void> JobEmission::WritePrintSettings() const {
    std::vector<CFDictionary::Pair> kept;
    const CFDictionaryRef all = settings->CopyAsDictionary();
    for (const auto& [key, value] : all->Pairs()) {
        const std::string name = utf8Text(key);
        if (name != ticketPathSetting && name != systemChoicesSetting &&
            !isSecretNote(*description, description->GetPPDXControlForKey(key))) {
            kept.emplace_back(key, value);
        }
    }
    const CFDataRef list = CFPropertyListCreateXMLData(CFDictionaryCreate(kept));
    const std::span<const std::uint8_t> bytes = CFDataGetBytes(list);
    const std::error_code error = platform::system().WriteFile(
        options.savePrintSettings, {reinterpret_cast<const char*>(bytes.data()), bytes.size()},
        printSettingsMode);
    return error ? Fault{"cannot be written: " + error.message(), options.savePrintSettings} : Result<void>();
}

} // namespace torka::tool
