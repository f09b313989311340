// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Commands.h"

#include "bidi/commands/BidiFilePaths.h"
#include "bidi/commands/SpoolerCommands.h"
#include "bidi/commands/TicketCommands.h"
#include "bidi/records/RecordEncoding.h"
#include "platform/TextEncoding.h"
#include "spooler/TicketReader.h"
#include "spooler/filter/Answer.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/LiveSource.h"
#include "spooler/filter/MailboxFile.h"
#include "spooler/filter/QueueRecords.h"
#include "spooler/filter/ServerMessages.h"
#include "spooler/filter/TicketStore.h"
#include "spooler/filter/TwoWayFolder.h"

#include <algorithm>
#include <string>

namespace torka::filter {

namespace {

constexpr std::size_t maximumArgumentText = std::size_t{64} * 1024;

std::string_view firstLine(std::string_view text) { return text.substr(0, text.find_first_of("\r\n")); }

bool isLanguage(std::string_view code) {
    constexpr std::size_t longest = 35; // RFC 5646, 4.4.1
    return code.size() >= 2 && code.size() <= longest && std::ranges::all_of(code, [](char c) {
               return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                      c == '-' || c == '_';
           });
}

Result<void> keepRecord(const FilterJob& job, std::string_view name, std::string_view text) {
    if (text.empty()) {
        return Fault{"there is no text to keep", std::string(name)};
    }
    // The record would replace that of whichever member is idle.
    if (!job.printerClass.empty()) {
        return Fault{"a record is for a printer, and it came to the class " + job.printerClass,
                     std::string(name)};
    }
    const std::wstring wide = wideFromUtf8(text);
    Result<void> put = putRecords(job.queue, {{std::string(name), std::string(payloadFromWide(wide))}});
    return put ? put : put.Why().In(std::string(name));
}

Result<void> keepLanguage(const Sender& sender, std::string_view text) {
    const std::string_view code = firstLine(text);
    if (!isLanguage(code)) {
        return Fault{"the language code is none"};
    }
    return FilterNotes::Set(sender, NoteKind::language, code) ? Result<void>()
                                                              : Fault{"the language cannot be kept"};
}

Result<void> keepMailbox(const Sender& sender, std::string_view text) {
    const std::string_view name = lastComponent(firstLine(text));
    if (!MailboxFile::IsName(name)) {
        return Fault{"the destination names no mailbox"};
    }
    // Added beside the others: a waiting job may have another mailbox.
    return FilterNotes::Add(sender, NoteKind::mailbox, name) ? Result<void>()
                                                             : Fault{"the destination cannot be kept"};
}

Result<void> answer(const FilterJob& job, const Sender& sender, std::string_view text,
                    ControllerSource& source) {
    const std::optional<UpdateRequest> request = parseUpdateRequest(text);
    if (!request) {
        return Fault{"the request cannot be understood"};
    }
    const std::string_view locale = valueOf(*request, "locale");
    const AskedBy asked{
        job.queue, *request,
        request->printerAddress.empty() ? addressOfDevice(job.deviceUri) : request->printerAddress,
        isLanguage(locale) ? std::string(locale) : FilterNotes::Get(sender, NoteKind::language).value_or("")};
    return answerRequest(asked, source);
}

// Deletes the files that the pane may delete: the queue's two-way files, reports, and the sender's tickets.
void deleteFiles(const Sender& sender, std::string_view text) {
    while (!text.empty()) {
        const std::string_view name = lastComponent(firstLine(text));
        text.remove_prefix(std::min(firstLine(text).size() + 1, text.size()));
        if (name.empty()) {
            continue;
        }
        const bool isRemoved = removeTwoWayFile(sender.queue, name) ||
                               (isConnectionErrorFile(name) && PrivateFolder::Remove(name)) ||
                               TicketStore::RemoveOwn(sender, name);
        if (!isRemoved) {
            tellDebug("left alone: " + std::string(name));
        }
    }
}

Result<void> run(SpoolerCommand command, const FilterJob& job, std::string_view text,
                 ControllerSource& source) {
    const Sender sender{job.Destination(), job.user, std::string(job.OriginatingHost())};
    switch (command) {
    case SpoolerCommand::psTempFileName:
        return TicketStore::Announce(sender, job.Option(ticketNameOption), text);
    case SpoolerCommand::writePSTemp:
        return TicketStore::Store(sender, job.Identity(), job.Option(ticketNameOption), text);
    case SpoolerCommand::localeCode:
        return keepLanguage(sender, text);
    case SpoolerCommand::psqvDestination:
        return keepMailbox(sender, text);
    case SpoolerCommand::zanPrefs:
        return keepRecord(job, "QVDriverPreference", text);
    case SpoolerCommand::printerLocalPresets:
    case SpoolerCommand::writePresetData:
        return keepRecord(job, "QVlocalPreset", text);
    case SpoolerCommand::popupJnData:
        return keepRecord(job, "QVPopupJnData", text);
    case SpoolerCommand::updateCommands:
    case SpoolerCommand::getServerData:
    case SpoolerCommand::allBidi:
        return answer(job, sender, text, source);
    case SpoolerCommand::deleteUpdateFiles:
        deleteFiles(sender, text);
        return {};
    }
    return Fault{"the command is not known"};
}

} // namespace

std::size_t maximumCommandText(std::string_view title) {
    switch (commandFromTitle(title).value_or(SpoolerCommand::localeCode)) {
    case SpoolerCommand::writePSTemp:
        return maximumTicketBytes;
    case SpoolerCommand::zanPrefs:
    case SpoolerCommand::printerLocalPresets:
    case SpoolerCommand::writePresetData:
    case SpoolerCommand::popupJnData:
        return maximumRecordText;
    default:
        return maximumArgumentText;
    }
}

int runCommand(const FilterJob& job, std::string_view text, ControllerSource& source) {
    const std::optional<SpoolerCommand> command = commandFromTitle(job.title);
    const auto carriedOut = [&]() -> Result<void> {
        if (!command) {
            return Fault{"it is not known"};
        }
        if (!isFileName(job.queue)) {
            return Fault{"the queue has no usable name"};
        }
        if (text.size() > maximumCommandText(job.title)) {
            return Fault{"its text is longer than " + std::to_string(maximumCommandText(job.title)) +
                         " bytes"};
        }
        if (const std::error_code error = PrivateFolder::Prepare()) {
            return Fault{"the filter's folder cannot be used: " + error.message()};
        }
        TicketStore::SweepSometimes();
        sweepTwoWayFolder();
        return run(*command, job, text, source);
    }();
    if (!carriedOut) {
        tellError("The command " + job.title + " was not carried out: " + carriedOut.Why().Line() + ".");
    }
    return carriedOut ? 0 : 1;
}

} // namespace torka::filter
