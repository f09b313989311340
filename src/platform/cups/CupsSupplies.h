#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

// What a queue or an IPP printer tells about its supplies, trays and itself: the attributes as they came, in
// no way checked. The lists of one family are parallel, and may be of different lengths.

namespace torka::platform {

// A member of "media-col-ready"; "" and 0 for what it does not tell.
struct LoadedMedia {
    std::string source; // keyword, such as "tray-1"
    std::string type;   // keyword, such as "stationery-letterhead"
    std::string color;  // keyword, such as "white"
    int width = 0;      // hundredths of a millimetre
    int height = 0;
};

struct PrinterFacts {
    // The print server's words, set by filters and backends with "ATTR:" lines. Levels are percent; negative:
    // not known.
    std::vector<std::string> markerNames;
    std::vector<std::string> markerTypes;
    std::vector<std::string> markerColors;
    std::vector<int> markerLevels;
    std::vector<int> markerLowLevels;
    std::vector<int> markerHighLevels;
    // PWG 5100.13, "key=value;" texts.
    std::vector<std::string> supplies;
    std::vector<std::string> supplyDescriptions;
    std::vector<std::string> inputTrays;
    std::vector<LoadedMedia> mediaReady;
    std::string name;
    std::string makeAndModel;
    std::string firmware;
};

// Of a queue, from the print server; none when it does not answer.
std::optional<PrinterFacts> queueFacts(const std::string& queueName);
// Of the printer at an "ipp" or "ipps" URI, asked directly; none for other URIs, and when it does not answer
// with at most a megabyte within the time. `limit` holds for each of three steps: finding the host,
// connecting, the answer.
std::optional<PrinterFacts> deviceFacts(const std::string& uri, std::chrono::milliseconds limit);

} // namespace torka::platform
