// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/FilterLines.h"

#include <algorithm>

namespace torka::tool {

namespace {

constexpr std::string_view types[] = {"application/vnd.cups-postscript", "application/vnd.cups-command"};

struct FilterLine {
    std::string_view type; // "" for any other line
    std::string_view program;
};

// Takes "*cupsFilter:" and "*cupsFilter2:" lines. The quoted value is "TYPE COST PROGRAM", or
// "TYPE TYPE COST PROGRAM" for the second.
FilterLine readFilterLine(std::string_view line) {
    const std::size_t quote = line.find('"');
    if (!line.starts_with("*cupsFilter") || quote == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = line.substr(quote + 1);
    const std::string_view value = rest.substr(0, rest.find('"'));
    const std::size_t last = value.rfind(' ');
    return {value.substr(0, value.find(' ')),
            last == std::string_view::npos ? std::string_view() : value.substr(last + 1)};
}

bool isLineOfOurTypes(std::string_view line) {
    return std::ranges::find(types, readFilterLine(line).type) != std::end(types);
}

} // namespace

std::string withFilterLines(std::string_view description) {
    std::string result;
    bool isFirst = true;
    while (!description.empty()) {
        const std::size_t end = std::min(description.find_first_of("\r\n"), description.size());
        std::size_t next = std::min(end + 1, description.size());
        if (next < description.size() && description[end] == '\r' && description[next] == '\n') {
            ++next;
        }
        const std::string_view line = description.substr(0, end);
        const std::string_view lineEnd = next > end ? description.substr(end, next - end) : "\n";
        if (!isLineOfOurTypes(line)) {
            result.append(line).append(lineEnd);
        }
        if (isFirst) {
            for (const std::string_view type : types) {
                result.append("*cupsFilter: \"").append(type).append(" 0 torkafilter\"").append(lineEnd);
            }
            isFirst = false;
        }
        description.remove_prefix(next);
    }
    return result;
}

std::vector<FilterLineFault> filterLineFaults(std::string_view description) {
    std::vector<FilterLineFault> faults;
    for (const std::string_view type : types) {
        faults.push_back({std::string(type), {}});
    }
    while (!description.empty()) {
        const std::size_t end = std::min(description.find_first_of("\r\n"), description.size());
        const FilterLine line = readFilterLine(description.substr(0, end));
        const auto fault = std::ranges::find(faults, line.type, &FilterLineFault::type);
        if (line.program == "torkafilter" && fault != faults.end()) {
            faults.erase(fault);
        } else if (fault != faults.end()) {
            fault->program = line.program;
        }
        description.remove_prefix(std::min(end + 1, description.size()));
    }
    return faults;
}

} // namespace torka::tool
