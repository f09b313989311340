// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/OptionJob.h"

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "PPDX/Utilities/MemoryShortage.h"
#include "ZANUtils/FieldKeys.h"
#include "connection/ZANCorvianPrinterPList.h"
#include "jobsettings/Findings.h"
#include "jobsettings/OptionSettings.h"
#include "output/FeatureEmission.h"
#include "platform/System.h"
#include "platform/cups/CupsQueue.h"
#include "spooler/filter/MarkedChoices.h"
#include "spooler/filter/ServerMessages.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace torka::filter {

namespace {

// The document came as it is printed: the print server's own filters have not seen it.
constexpr std::string_view unfilteredType = "application/vnd.cups-postscript";
constexpr int watermarkBlock = 1; // of the queue's address list

std::string withoutAsterisk(std::string text) {
    text.erase(0, text.starts_with('*') ? 1 : 0);
    return text;
}

bool isNoDescription(const ZANPPD& model) {
    const PPDXErrorObj* error = model.Errors()->First();
    return error != nullptr && *error == PPDErr_NotPPDFile;
}

// Null for a description that is not made for the pane, and for none.
Result<std::unique_ptr<ZANPPD>> readModel(const std::string& path) {
    auto model = std::make_unique<ZANPPD>(kAcceptOrphans | kAcceptHidden);
    model->SetFile(FSRef{path});
    model->Build();
    std::error_code failure;
    if (model->HasFatalError() && std::filesystem::is_regular_file(path, failure) &&
        !isNoDescription(*model)) {
        return Fault{"cannot be read"};
    }
    const bool isOurs =
        !model->HasFatalError() && (model->MakerVersion() != nullptr || model->MakerVersionMac() != nullptr);
    return isOurs ? std::move(model) : nullptr;
}

bool hasEntry(const std::string& description, const std::string& name) {
    const ZANCorvianPrinterPList list(std::make_unique<DescriptionPropertyListStore>(description));
    bool isThere = false;
    list.Exists(cfString(name), isThere);
    return isThere;
}

// The description with the address list of what the job was sent to. The list of a class is at its first
// printer, and the server keeps the descriptions of all queues in one folder. A server without a domain
// socket, or with a policy against it, does not tell the first printer: then the only description with an
// entry of the class counts. "" when none has one. Fails when several have one.
Result<std::string> descriptionWithList(const FilterJob& job) {
    if (job.printerClass.empty()) {
        return job.description;
    }
    const std::filesystem::path folder = std::filesystem::path(job.description).parent_path();
    std::error_code failure;
    if (const std::optional<std::string> first = platform::describedQueue(job.printerClass)) {
        const std::filesystem::path description = folder / (*first + ".ppd");
        if (std::filesystem::is_regular_file(description, failure)) {
            return description.string();
        }
    }
    std::vector<std::string> found;
    std::filesystem::directory_iterator file(folder, failure);
    for (; !failure && file != std::filesystem::directory_iterator(); file.increment(failure)) {
        std::string path = file->path().string();
        if (path.ends_with(".ppd") && hasEntry(path, job.printerClass)) {
            found.push_back(std::move(path));
        }
    }
    if (failure || found.size() > 1) {
        return Fault{"the print server does not tell the first printer of the class " + job.printerClass +
                     ", whose address list counts"};
    }
    return found.empty() ? std::string() : found.front();
}

QueueFacts queueFacts(const FilterJob& job, const std::string& description) {
    QueueFacts facts;
    facts.isLaidOut = job.contentType != unfilteredType;
    const ZANCorvianPrinterPList list(std::make_unique<DescriptionPropertyListStore>(description));
    const CFStringRef queue = cfString(job.Destination());
    bool isKnown = false;
    list.Exists(queue, isKnown);
    facts.isTwoWay = isKnown && list.getIPEnabled(queue);
    std::vector<CFStringRef> rows;
    list.GetDataBlob(queue, watermarkBlock, rows);
    for (const CFStringRef& row : rows) {
        facts.watermarks.push_back(utf8Text(row));
    }
    return facts;
}

void tellLeftOut(const FeatureEmission& emission, const OptionSettings& settings, OptionJob& result) {
    for (const ZANJobNoteList::LeftOutNote& note : emission.LeftOutNotes()) {
        result.told.push_back(withoutAsterisk(note.keyword) + " is left out: " + leftOutReason(note.reason));
    }
    for (const LeftOutSetting& setting : emission.LeftOutSettings()) {
        if (!settings.IsPrintedByServer(setting.keyword)) {
            result.told.push_back(withoutAsterisk(setting.keyword) +
                                  " is left out: " + leftOutReason(setting));
        }
    }
}

// Drops the code of settings that the print server's own code prints. A keyword whose code is not in the
// ticket keeps the server's, which says the same.
void leaveToServer(const OptionSettings& settings, std::vector<TicketEntry>& entries) {
    const auto isCode = [](const TicketEntry& entry) {
        return entry.site == siteDocumentSetup || entry.site == sitePageSize;
    };
    KeywordSet present;
    std::erase_if(entries, [&](const TicketEntry& entry) {
        const std::string_view keyword = isCode(entry) ? featureKeyword(entry.bytes) : std::string_view();
        if (keyword.empty()) {
            return false;
        }
        if (settings.IsLeftToServer(keyword)) {
            return true;
        }
        present.emplace(keyword);
        return false;
    });
    std::erase_if(entries, [&](const TicketEntry& entry) {
        return entry.site == siteSuppressedKeyword && !present.contains(entry.bytes) &&
               settings.IsPrintedByServer(entry.bytes);
    });
}

void emitTicket(const OptionSettings& settings, OptionJob& result) {
    if (const Result<void> keys = useInstalledFieldKeys(); !keys) {
        tellDebug(keys.Why().Line());
    }
    const auto session = std::make_shared<platform::MemorySession>();
    ZANJobTicket ticket(nullptr, settings.Settings(), nullptr);
    FeatureEmission emission(settings, ticket, session, EmissionPurpose::keepSettings);
    emission.OutPostscriptData();
    for (const ZANJobTicket::Entry& entry : ticket.Entries()) {
        result.ticket.entries.push_back({entry.site, std::string(entry.bytes)});
    }
    leaveToServer(settings, result.ticket.entries);
    tellLeftOut(emission, settings, result);
}

std::string joined(const std::vector<std::string>& texts) {
    std::string line;
    for (const std::string& text : texts) {
        line += (line.empty() ? "" : "; ") + text;
    }
    return line;
}

// Ends the conflicts, or tells of them, as the job asks.
void settleConflicts(OptionSettings& settings, OptionJob& result) {
    std::vector<std::string> conflicts = conflictTexts(*settings.Description());
    if (!conflicts.empty() && settings.Policy() == ConflictPolicy::resolve) {
        const std::vector<std::string> changes = settings.Resolve();
        for (const std::string& change : changes) {
            result.told.push_back("because of a conflict, " + change);
        }
        conflicts = conflictTexts(*settings.Description());
    }
    result.told.insert(result.told.end(), conflicts.begin(), conflicts.end());
}

} // namespace

std::optional<OptionJob> readOptionJob(const FilterJob& job, SecretNotes secrets) {
    if (std::ranges::all_of(job.options,
                            [](const auto& option) { return OptionSettings::IsLeftAlone(option.first); })) {
        return std::nullopt;
    }
    const std::uint64_t shortagesBefore = gMemoryShortages;
    const Result<std::unique_ptr<ZANPPD>> read = readModel(job.description);
    OptionJob result;
    if (!read) {
        result.refusal = "This job cannot be printed as its options ask: the queue's description " +
                         read.Why().text + ". Print it again.";
        return result;
    }
    const std::unique_ptr<ZANPPD>& model = *read;
    if (!model) {
        return std::nullopt;
    }
    const Result<std::string> list = descriptionWithList(job);
    OptionSettings settings(*model, queueFacts(job, list ? *list : ""));
    if (!settings.NamesSettings(job.options)) {
        return std::nullopt;
    }
    if (secrets == SecretNotes::leftOut) {
        settings.LeaveSecretsOut();
    }
    settings.Take(job.options, markedChoices(job.description, job.options));
    if (!settings.ProtectedNotes().empty()) {
        result.refusal = "This job cannot be printed: " + joined(settings.ProtectedNotes()) +
                         " is protected and cannot be an option, because others can read the options of a "
                         "job. Print it from an application with the pane.";
        return result;
    }
    if (secrets == SecretNotes::leftOut) {
        result.told.emplace_back(
            "its print settings belong to another job, so that its notes with passwords and "
            "protected fields are left out");
    }
    if (!list) {
        result.told.push_back(list.Why().text);
    }
    result.told.insert(result.told.end(), settings.Remarks().begin(), settings.Remarks().end());
    settleConflicts(settings, result);
    emitTicket(settings, result);
    if (gMemoryShortages != shortagesBefore) {
        throw std::bad_alloc();
    }
    if (settings.Policy() == ConflictPolicy::stop && !result.told.empty()) {
        result.refusal =
            "This job cannot be printed as its options ask (torka-conflicts=stop): " + joined(result.told) +
            ".";
    }
    return result;
}

} // namespace torka::filter
