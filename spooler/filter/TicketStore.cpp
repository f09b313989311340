#include "spooler/filter/TicketStore.h"

#include <string>

namespace torka::filter {

namespace {

constexpr std::string_view ticketPrefix = "Torka.temp";
constexpr std::string_view ownerSuffix = ".owner";
constexpr std::size_t uuidLength = 36;
constexpr std::size_t mostOwner = 1024; // bytes

std::string ownerFile(std::string_view ticket) { return std::string(ticket).append(ownerSuffix); }

// What this filter leaves in the folder and nobody fetches after a day.
bool isOutdatable(std::string_view name) {
    std::string_view ticket = name;
    if (ticket.ends_with(ownerSuffix)) {
        ticket.remove_suffix(ownerSuffix.size());
    }
    return isTicketName(ticket) || name.starts_with("ConnectionErrorInfoFile") || name.starts_with(".torka-");
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

std::string TicketStore::Announce(const Sender& sender, std::string_view path) {
    while (!path.empty() && (path.back() == '\n' || path.back() == '\r')) {
        path.remove_suffix(1);
    }
    const std::string_view name = lastComponent(path);
    if (!isTicketName(name)) {
        return "the announced ticket has no name of a ticket";
    }
    return FilterNotes::Add(sender, NoteKind::ticketName, name) ? "" : "the ticket's name cannot be kept";
}

std::string TicketStore::Store(const Sender& sender, std::string_view content) {
    const std::optional<std::string> name = FilterNotes::TakeFirst(sender, NoteKind::ticketName);
    if (!name) {
        return "a ticket came that no name was sent for";
    }
    if (!isTicketName(*name) || PrivateFolder::Exists(*name)) {
        return *name + ": there is such a ticket already";
    }
    std::error_code error = PrivateFolder::Write(ownerFile(*name), sender.user);
    if (!error) {
        error = PrivateFolder::Write(*name, content);
        if (error) {
            PrivateFolder::Remove(ownerFile(*name));
        }
    }
    return error ? *name + ": the ticket cannot be kept: " + error.message() : "";
}

OpenFile TicketStore::Open(const Sender& sender, std::string_view path, std::string& problem) {
    const std::string name(lastComponent(path));
    if (!isTicketName(name)) {
        problem = "The print settings of this job have no valid name. Print it again from its application.";
        return OpenFile();
    }
    std::error_code error;
    OpenFile ticket = PrivateFolder::Open(name, error);
    if (!ticket) {
        FilterNotes::ForgetUpTo(sender, NoteKind::ticketName, name);
        problem =
            error == std::errc::no_such_file_or_directory
                ? "The print settings of this job are missing (" + name +
                      "): they did not arrive, or are older than a day. Print it again from its application."
                : "The print settings of this job cannot be read (" + name + "): " + error.message() + ".";
        return OpenFile();
    }
    std::string owner;
    if (PrivateFolder::Read(ownerFile(name), mostOwner, owner) || owner != sender.user) {
        problem = "The print settings of this job belong to somebody else (" + name + ").";
        return OpenFile();
    }
    return ticket;
}

bool TicketStore::Remove(std::string_view name) {
    const bool isRemoved = isTicketName(name) && PrivateFolder::Remove(name);
    PrivateFolder::Remove(ownerFile(name));
    return isRemoved;
}

void TicketStore::RemoveOld() { PrivateFolder::RemoveOlder(FilterNotes::lifetime, isOutdatable); }

} // namespace torka::filter
