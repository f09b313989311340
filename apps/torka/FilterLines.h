// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace torka::tool {

// Inserts, behind the description's first line, the lines that send PostScript documents and command jobs
// through torkafilter. Removes the lines of other filters for these two types and keeps those for other
// types. Without a line for command jobs, the server's own filters take them and answer nothing.
std::string withFilterLines(std::string_view description);

// What a description lacks of these two lines.
struct FilterLineFault {
    std::string type;    // MIME type
    std::string program; // what its line calls instead of torkafilter; "" without a line
};
std::vector<FilterLineFault> filterLineFaults(std::string_view description);

} // namespace torka::tool
