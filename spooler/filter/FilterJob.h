#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

// One call of the filter: what the print server tells about the job.

namespace torka::filter {

// What tells a job from every other one, for as long as the server keeps it: also when it is restarted, moved
// to another queue, or has several documents. The number alone would come again after the server forgot its
// jobs; the UUID alone could be sent along by whoever has read it.
struct JobIdentity {
    std::string number;
    std::string uuid; // "" when the server does not tell
    bool operator==(const JobIdentity&) const = default;
};

struct FilterJob {
    std::string number;
    std::string user;
    std::string title; // UTF-8, exactly as the job was sent
    std::map<std::string, std::string, std::less<>> options;
    std::string file; // "" when the document comes on standard input
    // Of the environment.
    std::string queue;     // PRINTER
    std::string deviceUri; // DEVICE_URI
    std::string contentType;

    bool IsCommand() const { return contentType == "application/vnd.cups-command"; }
    // Of an option; "" when the job has none of that name.
    std::string_view Option(std::string_view name) const;
    // The host that the job came from; "" when the server does not tell.
    std::string_view OriginatingHost() const { return Option("job-originating-host-name"); }
    JobIdentity Identity() const { return {number, std::string(Option("job-uuid"))}; }
};

// From a filter's arguments (job user title copies options [file]) and environment; nothing when their number
// is another.
std::optional<FilterJob> readFilterJob(int argc, const char* const* argv);

} // namespace torka::filter
