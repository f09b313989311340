// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/PrintJob.h"

#include "output/BundleIdentifier.h"
#include "output/InjectionSite.h"
#include "platform/System.h"
#include "spooler/ByteSink.h"
#include "spooler/SpliceFile.h"
#include "spooler/filter/MailboxFile.h"
#include "spooler/filter/OptionJob.h"
#include "spooler/filter/ServerMessages.h"
#include "spooler/filter/TicketStore.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <optional>
#include <string>
#include <system_error>
#include <unistd.h>

namespace torka::filter {

namespace {

int passUnchanged(int source, int target) {
    DescriptorSink sink(target);
    std::array<char, std::size_t{128} * 1024> buffer{};
    for (;;) {
        const ssize_t count = ::read(source, buffer.data(), buffer.size());
        if (count == 0) {
            return 0;
        }
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            tellError("The document cannot be read: " + std::generic_category().message(errno) + ".");
            return 1;
        }
        if (const int error = sink.Write({buffer.data(), static_cast<std::size_t>(count)}); error != 0) {
            tellError("The document cannot be passed on: " + std::generic_category().message(error) + ".");
            return 1;
        }
    }
}

int splice(int source, const Ticket& ticket, int target) {
    const SpliceOutcome outcome = spliceDescriptor(source, ticket, target);
    for (const std::string& warning : outcome.report.warnings) {
        tellDebug("document: " + warning);
    }
    if (outcome.status != SpliceStatus::ok) {
        tellError("The print settings could not be put into this job: " + outcome.errorText + ".");
        return 1;
    }
    for (const UnplacedEntry& entry : outcome.report.unplaced) {
        tellDebug("entry " + std::to_string(entry.entry) + " was not placed: " + entry.reason);
    }
    tellDebug("inserted " + std::to_string(outcome.report.bytesInserted) + " bytes of print settings");
    return 0;
}

// Without the description no feature code is guarded, because a job must not print without its protected
// notes.
void readUnguarded(const FilterJob& job, Ticket& ticket) {
    constexpr std::size_t longestDescription = std::size_t{64} * 1024 * 1024; // bytes
    std::string description;
    if (const std::error_code error =
            platform::system().ReadFile(job.description, longestDescription, description)) {
        tellDebug("no setting is guarded: the description cannot be read: " + error.message());
    } else {
        ticket.unguarded = unguardedNotes(description);
    }
}

// While one member of a class takes the commands of a job, another member may get the job itself. Waits until
// they have arrived, 20 seconds at most.
template <typename Check>
void waitForCommands(const FilterJob& job, const Check& haveArrived) {
    constexpr std::chrono::milliseconds interval{50};
    constexpr std::chrono::milliseconds limit{20'000};
    if (job.printerClass.empty()) {
        return;
    }
    for (std::chrono::milliseconds waited{0}; waited < limit && !haveArrived(); waited += interval) {
        platform::system().Sleep(interval);
    }
}

Sender senderOf(const FilterJob& job) {
    return {job.Destination(), job.user, std::string(job.OriginatingHost())};
}

// Sends nothing to the device.
int spliceIntoMailbox(const FilterJob& job, int source, const Ticket& ticket, std::string_view path) {
    const std::string_view name = lastComponent(path);
    waitForCommands(job, [&] {
        return !MailboxFile::IsName(name) || FilterNotes::Has(job.user, NoteKind::mailbox, name);
    });
    Result<MailboxFile> mailbox = MailboxFile::Create(senderOf(job), path, job.Run());
    if (mailbox && splice(source, ticket, mailbox->Descriptor()) != 0) {
        return 1;
    }
    const Result<void> done = mailbox ? mailbox->Commit() : mailbox.Why();
    if (!done) {
        tellError(done.Why().text);
    }
    return done ? 0 : 1;
}

int printTicket(const FilterJob& job, int source, Ticket& ticket, int target) {
    readUnguarded(job, ticket);
    const auto& entries = ticket.entries;
    const auto mailbox = std::ranges::find(entries, siteFileDestination, &TicketEntry::site);
    return mailbox == entries.end() ? splice(source, ticket, target)
                                    : spliceIntoMailbox(job, source, ticket, mailbox->bytes);
}

// The sender reads the warning as the state of the job and its queue.
int printByOptions(const FilterJob& job, int source, OptionJob& options, int target) {
    if (!options.refusal.empty()) {
        tellError(options.refusal);
        return 1;
    }
    std::string line;
    for (const std::string& text : options.told) {
        line += (line.empty() ? "" : "; ") + text;
    }
    if (!line.empty()) {
        tellWarning("Printed by its options: " + line + ".");
    }
    return printTicket(job, source, options.ticket, target);
}

// One dialog may send several jobs with one ticket, which the first of them gets. Returns nothing when this
// is no such job, or when its options say nothing.
std::optional<OptionJob> withoutItsTicket(const FilterJob& job, std::string_view path) {
    if (!TicketStore::IsUsedByAnotherOf(senderOf(job), job.Identity(), path)) {
        return std::nullopt;
    }
    return readOptionJob(job, SecretNotes::leftOut);
}

} // namespace

int printJob(const FilterJob& job, int source, int target) {
    const auto named = job.options.find(ticketPathSetting);
    if (named == job.options.end()) {
        std::optional<OptionJob> options = readOptionJob(job, SecretNotes::refused);
        return options ? printByOptions(job, source, *options, target) : passUnchanged(source, target);
    }
    TicketStore::SweepSometimes();
    waitForCommands(job, [&] { return TicketStore::Has(named->second); });
    const Result<OpenFile> opened = TicketStore::Open(senderOf(job), job.Identity(), named->second);
    if (!opened) {
        if (std::optional<OptionJob> options = withoutItsTicket(job, named->second)) {
            return printByOptions(job, source, *options, target);
        }
        tellError(opened.Why().text);
        return 1;
    }
    const std::string name(lastComponent(named->second));
    Result<Ticket> ticket = readTicketFile(opened->Descriptor(), name);
    if (!ticket) {
        tellError("The print settings of this job are broken: " + ticket.Why().Line() + ".");
        return 1;
    }
    for (const TicketWarning& warning : ticket->warnings) {
        tellDebug(name + ": entry " + std::to_string(warning.entry) + ": " + warning.text);
    }
    return printTicket(job, source, *ticket, target);
}

} // namespace torka::filter
