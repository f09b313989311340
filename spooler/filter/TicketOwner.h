// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/filter/FilterJob.h"
#include "spooler/filter/PrivateFolder.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

// Records the owner of a ticket in the file NAME.owner beside it.

namespace torka::filter {

inline constexpr std::string_view ticketOwnerSuffix = ".owner";
inline constexpr std::size_t maximumOwnerRecord = std::size_t{64} * 1024; // bytes

struct TicketRecord {
    std::string user;
    std::string host;
    JobIdentity command;               // the command job that brought the ticket
    std::size_t bytes = 0;             // of the ticket
    std::optional<JobIdentity> usedBy; // the print job that took it
    bool isContested = false;          // another command job sent a text under the same name
    bool operator==(const TicketRecord&) const = default;
};

// Returns a first line with what is known when the ticket arrives, and one more line for each later event.
std::string ticketRecordText(const TicketRecord& record);
// Returns nothing when the first line is invalid. Ignores a later line that is incomplete: its writer was
// killed.
std::optional<TicketRecord> readTicketRecord(std::string_view text);

// The record while its file is locked. Filters of several jobs that want one ticket take turns.
class TicketOwner {
public:
    // Creates the record's file. The error is file_exists when there already is one.
    static FileResult<TicketOwner> Create(std::string_view ticket, const TicketRecord& record);
    // Waits for the lock. Errors: no_such_file_or_directory; bad_message for a record that cannot be read.
    static FileResult<TicketOwner> Open(std::string_view ticket);

    const TicketRecord& Record() const { return record; }
    // Returns the time of the file's last change, seconds since 1970.
    std::int64_t Changed() const;
    // Assigns the ticket to a job, or records that this job uses it again.
    std::error_code MarkUsed(const JobIdentity& job);
    std::error_code MarkContested();

private:
    TicketOwner(OpenFile locked, TicketRecord read, std::size_t wholeLines)
        : file(std::move(locked))
        , record(std::move(read))
        , length(wholeLines) {}
    std::error_code Append(std::string_view line);

    OpenFile file;
    TicketRecord record;
    std::size_t length; // bytes, up to the end of the last whole line
};

} // namespace torka::filter
