#pragma once

#include "spooler/filter/FilterJob.h"
#include "spooler/filter/FilterNotes.h"
#include "spooler/filter/PrivateFolder.h"

#include <chrono>
#include <string>
#include <string_view>

// The tickets that were sent ahead of their jobs.
//
// A ticket lies under its name in the private folder, its owner record in a file beside it, written first: a
// ticket without an owner record is none. The first print job that uses a ticket is written into the record;
// no other job may use it from then on.

namespace torka::filter {

// "Torka.temp" and a UUID, nothing else.
bool isTicketName(std::string_view name);
// The last component of a path.
std::string_view lastComponent(std::string_view path);

// Functions that return a text answer "", or one line that says why nothing was done.
class TicketStore {
public:
    // How long a ticket waits for its job, which may be held, and how long it is kept after its job's last
    // start, for the job may be printed again.
    static constexpr std::chrono::seconds unusedLifetime = std::chrono::hours(30 * 24);
    static constexpr std::chrono::seconds usedLifetime = std::chrono::hours(7 * 24);

    // The name of a ticket that is to come. `named` is the name that the command's own option tells, "" when
    // it has none: then the name is kept for the sender's next text.
    static std::string Announce(const Sender& sender, std::string_view named, std::string_view path);
    // The content of the ticket that the option names. Without an option it is the ticket whose name this
    // sender announced, provided that there is exactly one: with two nobody knows whose text this is.
    static std::string Store(const Sender& sender, const JobIdentity& command, std::string_view named,
                             std::string_view content);
    // The ticket that a print job names. It belongs to this job from then on. When it was announced without
    // an option and never came, it is no longer waited for.
    static OpenFile Open(const Sender& sender, const JobIdentity& job, std::string_view path,
                         std::string& problem);
    // Removes a ticket of this user with its owner record.
    static bool RemoveOwn(const Sender& sender, std::string_view name);
    // Removes tickets whose time is over, halves of tickets, and what other jobs left behind. SweepSometimes
    // does so at most every ten minutes.
    static void Sweep();
    static void SweepSometimes();
};

} // namespace torka::filter
