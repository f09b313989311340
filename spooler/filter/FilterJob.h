#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

// One call of the filter: what the print server tells about the job.

namespace torka::filter {

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
};

// From a filter's arguments (job user title copies options [file]) and environment; nothing when their number
// is another.
std::optional<FilterJob> readFilterJob(int argc, const char* const* argv);

} // namespace torka::filter
