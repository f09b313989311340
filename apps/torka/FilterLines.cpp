// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/FilterLines.h"

#include "bidi/text/LineReader.h"

#include <algorithm>

namespace torka::tool {

namespace {

constexpr std::string_view types[] = {"application/vnd.cups-postscript", "application/vnd.cups-command"};

constexpr std::string_view ownProgram = "torkafilter";

// Takes "*cupsFilter:" and "*cupsFilter2:" lines. The quoted value is "TYPE COST PROGRAM", or
// "TYPE TYPE COST PROGRAM" for the second. The type of any other line is "".
FilterLine readFilterLine(std::string_view line) {
    const std::size_t quote = line.find('"');
    if (!line.starts_with("*cupsFilter") || quote == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = line.substr(quote + 1);
    const std::string_view value = rest.substr(0, rest.find('"'));
    const std::size_t last = value.rfind(' ');
    return {std::string(value.substr(0, value.find(' '))),
            std::string(last == std::string_view::npos ? std::string_view() : value.substr(last + 1))};
}

bool isOurType(std::string_view type) { return std::ranges::find(types, type) != std::end(types); }

} // namespace

std::string withFilterLines(std::string_view description) {
    std::string result;
    for (std::size_t at = 0; at < description.size();) {
        const std::size_t end = lineEnd(description, at);
        const std::size_t next = lineAfter(description, end);
        const std::string_view line = description.substr(at, end - at);
        const std::string_view ending = next > end ? description.substr(end, next - end) : "\n";
        if (!isOurType(readFilterLine(line).type)) {
            result.append(line).append(ending);
        }
        if (at == 0) {
            for (const std::string_view type : types) {
                result.append("*cupsFilter: \"").append(type).append(" 0 ").append(ownProgram);
                result.append("\"").append(ending);
            }
        }
        at = next;
    }
    return result;
}

std::vector<FilterLine> filterLineFaults(std::string_view description) {
    std::vector<FilterLine> faults;
    for (const std::string_view type : types) {
        faults.push_back({std::string(type), {}});
    }
    for (std::size_t at = 0; at < description.size(); at = lineAfter(description, lineEnd(description, at))) {
        const FilterLine line = readFilterLine(description.substr(at, lineEnd(description, at) - at));
        const auto fault = std::ranges::find(faults, line.type, &FilterLine::type);
        if (line.program == ownProgram && fault != faults.end()) {
            faults.erase(fault);
        } else if (fault != faults.end()) {
            fault->program = line.program;
        }
    }
    return faults;
}

std::vector<FilterLine> otherFilterLines(std::string_view description) {
    std::vector<FilterLine> lines;
    for (std::size_t at = 0; at < description.size(); at = lineAfter(description, lineEnd(description, at))) {
        FilterLine line = readFilterLine(description.substr(at, lineEnd(description, at) - at));
        if (isOurType(line.type) && line.program != ownProgram && line.program != "-") {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

} // namespace torka::tool
