// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

// One call of the filter: what the print server passes about the job.

namespace torka::filter {

// Identifies a job for as long as the server keeps it, also when the job is restarted, moved to another
// queue, or has several documents. The number alone is not unique: the server reuses it after it has
// forgotten its jobs. The UUID alone is not safe: whoever has read it could send it along.
struct JobIdentity {
    std::string number;
    std::string uuid; // "" when the server does not give one
    bool operator==(const JobIdentity&) const = default;
};

struct FilterJob {
    std::string number;
    std::string user;
    std::string title; // UTF-8, exactly as the job was sent
    std::map<std::string, std::string, std::less<>> options;
    std::string file; // "" when the document comes on standard input
    // From the environment.
    std::string queue;        // PRINTER
    std::string printerClass; // CLASS: the class of printers that the job was sent to; "" without one
    std::string deviceUri;    // DEVICE_URI
    std::string contentType;
    std::string description; // PPD: the path of the queue's description

    bool IsCommand() const { return contentType == "application/vnd.cups-command"; }
    // Returns the name of what the job was sent to. Commands and jobs for a class reach any of its members.
    const std::string& Destination() const { return printerClass.empty() ? queue : printerClass; }
    // Returns the value of an option; "" when the job has no option of that name.
    std::string_view Option(std::string_view name) const;
    // Returns the host that sent the job; "" when the server does not give it.
    std::string_view OriginatingHost() const { return Option("job-originating-host-name"); }
    JobIdentity Identity() const { return {number, std::string(Option("job-uuid"))}; }
    // Identifies one start of the job: its documents, banner pages included, share it, and a restart has
    // another. "" when the server does not tell it.
    std::string Run() const;
};

// Reads a filter's arguments (job user title copies options [file]) and environment. Returns nothing for any
// other number of arguments.
std::optional<FilterJob> readFilterJob(int argc, const char* const* argv);

} // namespace torka::filter
