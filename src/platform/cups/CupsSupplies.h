// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// The attributes of a queue or an IPP printer about its supplies, its trays and itself. The values are
// unchecked. The lists of one family are parallel and may have different lengths.

namespace torka::platform {

// A member of "media-col-ready"; "" and 0 for missing values.
struct LoadedMedia {
    std::string source; // keyword, such as "tray-1"
    std::string type;   // keyword, such as "stationery-letterhead"
    std::string color;  // keyword, such as "white"
    int width = 0;      // hundredths of a millimetre
    int height = 0;
};

struct PrinterFacts {
    // The print server's attributes, which filters and backends set with "ATTR:" lines. Levels are percent;
    // negative when unknown.
    std::vector<std::string> markerNames;
    std::vector<std::string> markerTypes;
    std::vector<std::string> markerColors;
    std::vector<int> markerLevels;
    std::vector<int> markerLowLevels;
    std::vector<int> markerHighLevels;
    // Texts of the form "key=value;" (PWG 5100.13).
    std::vector<std::string> supplies;
    std::vector<std::string> supplyDescriptions;
    std::vector<std::string> inputTrays;
    std::vector<LoadedMedia> mediaReady;
    std::string name;
    std::string makeAndModel;
    std::string firmware;
};

// The attributes of a queue, from the print server; nullopt when the server does not answer.
std::optional<PrinterFacts> queueFacts(const std::string& queueName);
// The attributes of the printer at an "ipp" or "ipps" URI, from the printer itself. nullopt for other URIs,
// for an answer of more than 1 MiB, and without an answer within `limit`.
std::optional<PrinterFacts> deviceFacts(const std::string& uri, std::chrono::milliseconds limit);

} // namespace torka::platform
