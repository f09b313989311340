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

// A line of a description for one of the two types.
struct FilterLine {
    std::string type;    // MIME type
    std::string program; // what it calls, with or without its folder; "" without a line
    bool CallsNone() const { return program.empty() || program == "-"; }
    bool operator==(const FilterLine&) const = default;
};
// The two types that do not go through torkafilter, with what takes them instead. When a type has several
// lines, the line that the print server takes counts.
std::vector<FilterLine> filterLineFaults(std::string_view description);
// The lines for the two types that call another program.
std::vector<FilterLine> otherFilterLines(std::string_view description);

} // namespace torka::tool
