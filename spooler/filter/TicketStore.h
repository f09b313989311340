#pragma once

#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PrivateFolder.h"

#include <string>
#include <string_view>

// The tickets that were sent ahead of their jobs.
//
// A ticket lies under its name in the private folder, its owner in a file beside it, written first: a ticket
// without an owner is none. Tickets are kept for a day, so that a job can be printed again.

namespace torka::filter {

// "Torka.temp" and a UUID, nothing else.
bool isTicketName(std::string_view name);
// The last component of a path.
std::string_view lastComponent(std::string_view path);

class TicketStore {
public:
    // The name of the next ticket of this sender. Each answers "", or one line that says why nothing was
    // done.
    static std::string Announce(const Sender& sender, std::string_view path);
    // The content of the ticket whose name was announced first and has had none yet.
    static std::string Store(const Sender& sender, std::string_view content);
    // The ticket that a job names. When it was announced and never came, it is no longer waited for, so that
    // the next pair of commands meets again.
    static OpenFile Open(const Sender& sender, std::string_view path, std::string& problem);
    // A ticket with its owner.
    static bool Remove(std::string_view name);
    // Tickets and reports older than a day.
    static void RemoveOld();
};

} // namespace torka::filter
