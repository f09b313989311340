// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/filter/FilterJob.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PrivateFolder.h"

#include <chrono>
#include <string>
#include <string_view>

// Stores the tickets that are sent ahead of their jobs.
//
// A ticket lies under its name in the private folder, with an owner record in a file beside it. The owner
// record is written first; a file without an owner record is not a ticket. The record also names the first
// print job that uses the ticket. No other job may use it from then on.

namespace torka::filter {

// Tells whether a name is "Torka.temp" and a UUID, and nothing else.
bool isTicketName(std::string_view name);
// Returns the last component of a path.
std::string_view lastComponent(std::string_view path);

class TicketStore {
public:
    // A ticket waits for its job, which may be held, for unusedLifetime. It stays for usedLifetime after its
    // job's last start, because the job may be printed again.
    static constexpr std::chrono::seconds unusedLifetime = std::chrono::hours(30 * 24);
    static constexpr std::chrono::seconds usedLifetime = std::chrono::hours(7 * 24);

    // Announces the name of a ticket that follows. `named` is the name in the command's own option, "" for
    // none. Without it the name is kept for the sender's next text.
    static Result<void> Announce(const Sender& sender, std::string_view named, std::string_view path);
    // Stores the content of the ticket that the option names. Without an option it is the ticket whose name
    // this sender announced, if exactly one is waiting. With two names the text could belong to either.
    static Result<void> Store(const Sender& sender, const JobIdentity& command, std::string_view named,
                              std::string_view content);
    // Whether the ticket has arrived. Also true for a name that is none.
    static bool Has(std::string_view path);
    // Opens the ticket that a print job names and assigns it to this job. Forgets the announced name of a
    // ticket that never arrived.
    static Result<OpenFile> Open(const Sender& sender, const JobIdentity& job, std::string_view path);
    // Whether the ticket of this name belongs to another job of the same user and host, and only to that one.
    static bool IsUsedByAnotherOf(const Sender& sender, const JobIdentity& job, std::string_view path);
    // Removes a ticket of this user with its owner record.
    static bool RemoveOwn(const Sender& sender, std::string_view name);
    // Removes expired tickets, incomplete tickets, and leftovers of other jobs. SweepSometimes does so at
    // most every ten minutes.
    static void Sweep();
    static void SweepSometimes();
};

} // namespace torka::filter
