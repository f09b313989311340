// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/TicketStore.h"

#include "spooler/filter/TicketOwner.h"
#include "spooler/filter/TicketRoom.h"

#include <algorithm>
#include <ctime>
#include <map>
#include <string>

namespace torka::filter {

namespace {

constexpr std::string_view ticketPrefix = "Torka.temp";
constexpr std::size_t uuidLength = 36;
constexpr std::string_view lockFile = "TorkaTickets.lock";    // for the limits of all tickets together
constexpr std::string_view sweptFile = "TorkaSwept";          // its time is that of the last sweep
constexpr std::int64_t sweepInterval = std::int64_t{10} * 60; // seconds
// For files that nobody fetches any more: reports of failed connections, and files that a killed filter was
// writing.
constexpr std::int64_t leftoverLifetime = std::int64_t{24} * 3600;
// For a ticket without a record, or a record without a ticket: its filter was killed.
constexpr std::int64_t halfLifetime = 3600;

bool isLeftover(std::string_view name) {
    return name.starts_with("ConnectionErrorInfoFile") || name.starts_with(".torka-");
}

Fault existsAlready(const std::string& name) { return {"there is such a ticket already", name}; }

Fault cannotKeep(const std::string& name, const std::error_code& error) {
    return {"the ticket cannot be kept: " + error.message(), name};
}

// Removes the ticket first. If the filter is killed in between, the record that is left gives nobody a
// ticket.
bool removePair(const std::string& name) {
    const bool isRemoved = PrivateFolder::Remove(name);
    PrivateFolder::Remove(name + std::string(ticketOwnerSuffix));
    return isRemoved;
}

// What happens to a text for a ticket that already has a record.
enum class Meeting {
    stored, // it is kept already: the same command was restarted
    gone    // the record belonged to a ticket that never got its text, and is removed
};

Result<Meeting> meetExisting(const Sender& sender, const JobIdentity& command, const std::string& name) {
    FileResult<TicketOwner> owner = TicketOwner::Open(name); // waits while another filter writes it
    if (!owner && owner.Why() == std::errc::no_such_file_or_directory) {
        return Meeting::gone;
    }
    if (!owner || owner->Record().user != sender.user) {
        return existsAlready(name);
    }
    if (!PrivateFolder::Exists(name)) {
        if (removePair(name) || !PrivateFolder::Exists(name + std::string(ticketOwnerSuffix))) {
            return Meeting::gone;
        }
        return existsAlready(name);
    }
    if (owner->Record().command == command && PrivateFolder::Open(name)) {
        return Meeting::stored;
    }
    // Two commands sent a text for one name, and either may be right. A job that has begun with the first
    // text keeps it.
    if (!owner->Record().usedBy) {
        owner->MarkContested();
    }
    return existsAlready(name);
}

// Creates the owner record of a new ticket when there is room. Returns nothing when a record exists already.
Result<std::optional<TicketOwner>> reserve(const Sender& sender, const std::string& name,
                                           const TicketRecord& record) {
    const FileResult<OpenFile> lock = PrivateFolder::Lock(lockFile);
    if (!lock) {
        return Fault{"the filter's folder cannot be locked"};
    }
    if (const Result<void> room = checkTicketRoom(sender, record.bytes); !room) {
        return room.Why();
    }
    FileResult<TicketOwner> owner = TicketOwner::Create(name, record);
    if (owner) {
        return std::optional(*std::move(owner));
    }
    if (owner.Why() == std::errc::file_exists) {
        return std::optional<TicketOwner>();
    }
    return cannotKeep(name, owner.Why());
}

// REQUIRES: the owner record is locked.
Result<void> writeTicket(const std::string& name, std::string_view content) {
    const bool isThere = PrivateFolder::Exists(name);
    const std::error_code error = isThere ? std::error_code() : PrivateFolder::Write(name, content);
    if (!isThere && !error) {
        return {};
    }
    PrivateFolder::Remove(name + std::string(ticketOwnerSuffix));
    return isThere ? existsAlready(name) : cannotKeep(name, error);
}

Result<void> storeAs(const Sender& sender, const JobIdentity& command, const std::string& name,
                     std::string_view content) {
    constexpr int tries = 3; // each finds a record that another filter removes meanwhile
    const TicketRecord record{sender.user, sender.host, command, content.size(), std::nullopt, false};
    for (int i = 0; i < tries; ++i) {
        const Result<std::optional<TicketOwner>> owner = reserve(sender, name, record);
        if (!owner) {
            return owner.Why();
        }
        if (*owner) {
            return writeTicket(name, content);
        }
        const Result<Meeting> met = meetExisting(sender, command, name);
        if (!met) {
            return met.Why();
        }
        if (*met == Meeting::stored) {
            return {};
        }
    }
    return existsAlready(name);
}

std::string missingText(const std::string& name) {
    return "The print settings of this job are missing (" + name +
           "): they did not arrive, or were kept for their time. Print it again from its application.";
}

// Fails when this job may not have the ticket.
Result<void> checkOwner(const TicketRecord& record, const Sender& sender, const JobIdentity& job,
                        const std::string& name) {
    if (record.user != sender.user) {
        return Fault{"The print settings of this job belong to somebody else (" + name + ")."};
    }
    if (record.isContested) {
        return Fault{"The print settings of this job came twice (" + name +
                     "), and nobody knows which are right. Print it again from its application."};
    }
    if (record.usedBy && *record.usedBy != job) {
        return Fault{"This job cannot be printed: its print settings belong to another job (" + name +
                     "). Print it again from its application."};
    }
    return {};
}

struct Halves {
    std::int64_t ticket = 0; // time of the last change; 0 when missing
    std::int64_t owner = 0;
};

void sweepTicket(const std::string& name, const Halves& halves, std::int64_t now) {
    const auto isOver = [now](std::int64_t changed, std::int64_t lifetime) {
        return now - changed > lifetime;
    };
    const std::int64_t changed = std::max(halves.ticket, halves.owner);
    const bool isWhole = halves.ticket != 0 && halves.owner != 0;
    if (!isOver(changed, isWhole ? TicketStore::usedLifetime.count() : halfLifetime)) {
        return;
    }
    // Waits for the lock and checks the record again.
    const FileResult<TicketOwner> owner = TicketOwner::Open(name);
    if (!owner && owner.Why() != std::errc::no_such_file_or_directory &&
        owner.Why() != std::errc::bad_message) {
        return;
    }
    if (owner && PrivateFolder::Exists(name)) {
        const auto lifetime =
            owner->Record().usedBy ? TicketStore::usedLifetime : TicketStore::unusedLifetime;
        if (!isOver(owner->Changed(), lifetime.count())) {
            return;
        }
    }
    removePair(name);
}

} // namespace

std::string_view lastComponent(std::string_view path) { return path.substr(path.rfind('/') + 1); }

bool isTicketName(std::string_view name) {
    if (!name.starts_with(ticketPrefix) || name.size() != ticketPrefix.size() + uuidLength) {
        return false;
    }
    name.remove_prefix(ticketPrefix.size());
    for (std::size_t i = 0; i < name.size(); ++i) {
        const char c = name[i];
        const bool isHyphen = i == 8 || i == 13 || i == 18 || i == 23;
        const bool isDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F') || (c >= 'a' && c <= 'f');
        if (isHyphen ? c != '-' : !isDigit) {
            return false;
        }
    }
    return true;
}

Result<void> TicketStore::Announce(const Sender& sender, std::string_view named, std::string_view path) {
    while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) {
        path.remove_suffix(1);
    }
    const std::string name(lastComponent(path));
    if (!isTicketName(name)) {
        return Fault{"the announced ticket has no name of a ticket"};
    }
    if (named.empty()) {
        return FilterNotes::Add(sender, NoteKind::ticketName, name)
                   ? Result<void>()
                   : Fault{"the ticket's name cannot be kept"};
    }
    if (lastComponent(named) != name) {
        return Fault{"the command's option and its text name two tickets"};
    }
    // The text names its ticket itself, so no name is kept.
    const FileResult<TicketOwner> owner = TicketOwner::Open(name);
    return owner && owner->Record().user != sender.user ? existsAlready(name) : Result<void>();
}

Result<void> TicketStore::Store(const Sender& sender, const JobIdentity& command, std::string_view named,
                                std::string_view content) {
    if (!named.empty()) {
        const std::string name(lastComponent(named));
        return isTicketName(name) ? storeAs(sender, command, name, content)
                                  : Fault{"the command's option names no ticket"};
    }
    std::size_t count = 0;
    const std::optional<std::string> name = FilterNotes::TakeOnly(sender, NoteKind::ticketName, count);
    if (count > 1) {
        return Fault{"a ticket came without its name, and " + std::to_string(count) +
                     " names wait for theirs: it could be another job's"};
    }
    if (!name || !isTicketName(*name)) {
        return Fault{"a ticket came that no name was sent for"};
    }
    Result<void> stored = storeAs(sender, command, *name, content);
    if (!stored && !PrivateFolder::Exists(*name)) {
        FilterNotes::Add(sender, NoteKind::ticketName, *name); // for a restart of the command
    }
    return stored;
}

bool TicketStore::Has(std::string_view path) {
    const std::string_view name = lastComponent(path);
    return !isTicketName(name) || PrivateFolder::Exists(name);
}

Result<OpenFile> TicketStore::Open(const Sender& sender, const JobIdentity& job, std::string_view path) {
    const std::string name(lastComponent(path));
    if (!isTicketName(name)) {
        return Fault{
            "The print settings of this job have no valid name. Print it again from its application."};
    }
    FileResult<TicketOwner> owner = TicketOwner::Open(name);
    if (owner) {
        if (const Result<void> allowed = checkOwner(owner->Record(), sender, job, name); !allowed) {
            return allowed.Why();
        }
    }
    FileResult<OpenFile> ticket = owner ? PrivateFolder::Open(name) : owner.Why();
    const std::error_code error = ticket ? owner->MarkUsed(job) : ticket.Why();
    if (!error) {
        return *std::move(ticket);
    }
    if (error != std::errc::no_such_file_or_directory) {
        return Fault{"The print settings of this job cannot be read (" + name + "): " + error.message() +
                     "."};
    }
    FilterNotes::ForgetUpTo(sender, NoteKind::ticketName, name);
    return Fault{missingText(name)};
}

bool TicketStore::IsUsedByAnotherOf(const Sender& sender, const JobIdentity& job, std::string_view path) {
    const std::string_view name = lastComponent(path);
    const FileResult<TicketOwner> owner =
        isTicketName(name) ? TicketOwner::Open(name)
                           : FileResult<TicketOwner>(std::make_error_code(std::errc::invalid_argument));
    if (!owner) {
        return false;
    }
    const TicketRecord& record = owner->Record();
    return record.user == sender.user && record.host == sender.host && !record.isContested && record.usedBy &&
           *record.usedBy != job;
}

bool TicketStore::RemoveOwn(const Sender& sender, std::string_view name) {
    if (!isTicketName(name)) {
        return false;
    }
    const FileResult<TicketOwner> owner = TicketOwner::Open(name);
    return owner && owner->Record().user == sender.user && removePair(std::string(name));
}

void TicketStore::Sweep() {
    const std::int64_t now = std::time(nullptr);
    std::map<std::string, Halves> tickets;
    for (const PrivateFolder::Entry& entry : PrivateFolder::List()) {
        std::string_view name = entry.name;
        if (isTicketName(name)) {
            tickets[entry.name].ticket = entry.changed;
        } else if (isLeftover(name) && now - entry.changed > leftoverLifetime) {
            PrivateFolder::Remove(name);
        } else if (name.ends_with(ticketOwnerSuffix)) {
            name.remove_suffix(ticketOwnerSuffix.size());
            if (isTicketName(name)) {
                tickets[std::string(name)].owner = entry.changed;
            }
        }
    }
    for (const auto& [name, halves] : tickets) {
        sweepTicket(name, halves, now);
    }
}

void TicketStore::SweepSometimes() {
    const std::int64_t now = std::time(nullptr);
    const std::int64_t last = PrivateFolder::Changed(sweptFile);
    if (last > now || now - last >= sweepInterval) {
        PrivateFolder::Write(sweptFile, "");
        Sweep();
    }
}

} // namespace torka::filter
