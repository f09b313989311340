#pragma once

#include "bidi/commands/SpoolerCommands.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Where the answers to the pane's requests come from.

namespace torka::filter {

struct ControllerRecord {
    std::string name;
    std::string payload; // as it travels: wide text is in 32-bit units
};

struct ControllerAnswer {
    bool isReached = false;                    // false: nothing answers at the address
    std::vector<ControllerRecord> dataRecords; // for the two-way data file
    std::vector<ControllerRecord> ppdRecords;  // for the queue's PPD
};

class ControllerSource {
public:
    ControllerSource() = default;
    ControllerSource(const ControllerSource&) = delete;
    ControllerSource& operator=(const ControllerSource&) = delete;
    virtual ~ControllerSource();
    // `language` is a code such as "ja", "" for the controller's own.
    virtual ControllerAnswer Ask(std::string_view address, const std::vector<RequestLine>& request,
                                 std::string_view language) = 0;
    // The numeric address at which the queue's device was found as a service of the net; "" when it was not.
    virtual std::string FoundAddress() { return {}; }
};

// Answers with texts that lie in a folder, one file a record; docs/spooler-filter.md describes it. A
// request's lines choose nothing: all records are given.
class FolderSource final : public ControllerSource {
public:
    explicit FolderSource(std::filesystem::path controllers)
        : folder(std::move(controllers)) {}
    ControllerAnswer Ask(std::string_view address, const std::vector<RequestLine>& request,
                         std::string_view language) override;

private:
    // "" where there is no folder.
    std::filesystem::path PlaceOf(std::string_view address, const std::vector<RequestLine>& request) const;

    std::filesystem::path folder;
};

// Fixed path of the folder that FolderSource is given.
inline constexpr std::string_view controllersFolder = "/etc/torka/controllers";

} // namespace torka::filter
