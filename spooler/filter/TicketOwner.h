#pragma once

#include "spooler/filter/FilterJob.h"
#include "spooler/filter/PrivateFolder.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

// Whose a ticket is: the file NAME.owner beside it.

namespace torka::filter {

inline constexpr std::string_view ticketOwnerSuffix = ".owner";

struct TicketRecord {
    std::string user;
    std::string host;
    JobIdentity command;               // the command job that brought the ticket
    std::size_t bytes = 0;             // of the ticket
    std::optional<JobIdentity> usedBy; // the print job that took it
    bool isContested = false;          // another command job brought a text under the same name
    bool operator==(const TicketRecord&) const = default;
};

// A line for what is known when the ticket comes, and a line for each thing that happens to it later.
std::string ticketRecordText(const TicketRecord& record);
// Nothing when the first line is none. A line behind it that is not whole says nothing: its writer was
// killed.
std::optional<TicketRecord> readTicketRecord(std::string_view text);

// The record while its file is locked: filters of several jobs that want one ticket go one after the other.
class TicketOwner {
public:
    // With its file, the error file_exists when there is one.
    static std::optional<TicketOwner> Create(std::string_view ticket, const TicketRecord& record,
                                             std::error_code& error);
    // Waits for the lock. Errors: no_such_file_or_directory; bad_message for a record that cannot be read.
    static std::optional<TicketOwner> Open(std::string_view ticket, std::error_code& error);

    const TicketRecord& Record() const { return record; }
    // Of the file's last change, seconds since 1970.
    std::int64_t Changed() const;
    // Gives the ticket to a job, or notes that this job uses it again.
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
