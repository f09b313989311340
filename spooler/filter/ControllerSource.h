// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/SpoolerCommands.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

// Provides the answers to the pane's requests.

namespace torka::filter {

struct ControllerRecord {
    std::string name;
    std::string payload; // in its wire form: wide text is in 32-bit units
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
    // Returns the numeric address at which the queue's device was found as a network service; "" when it was
    // not found.
    virtual std::string FoundAddress() { return {}; }
};

// Answers with texts from a folder, one file per record; docs/spooler-filter.md describes the folder. Ignores
// the lines of the request and returns all records.
class FolderSource final : public ControllerSource {
public:
    explicit FolderSource(std::filesystem::path controllers)
        : folder(std::move(controllers)) {}
    ControllerAnswer Ask(std::string_view address, const std::vector<RequestLine>& request,
                         std::string_view language) override;

private:
    // Returns "" when no folder exists.
    std::filesystem::path PlaceOf(std::string_view address, const std::vector<RequestLine>& request) const;

    std::filesystem::path folder;
};

// The fixed path of the folder that FolderSource gets.
inline constexpr std::string_view controllersFolder = "/etc/torka/controllers";

} // namespace torka::filter
