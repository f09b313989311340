// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::tool {

// The two-way records that a queue's filter has put into the queue's description: the address list, presets,
// popup job notes. The print server drops them with the description when the queue gets another one.
struct CarriedRecords {
    std::vector<std::string> names; // in the order of the description
    std::string lines;              // as they stand there, each with its line feed
    // Those of `names` that the new description has, too, with another content.
    std::vector<std::string> replaced;
};

// The records of `former` that `description` lacks or has in another state. The state of the former device's
// address is not among them. Reads lines, and no PPD, because libcups may be unable to read the description
// that is to be corrected.
CarriedRecords recordsToCarry(std::string_view former, std::string_view description);

// The description without any line of these records.
std::string withoutRecords(std::string_view description, const std::vector<std::string>& names);

} // namespace torka::tool
