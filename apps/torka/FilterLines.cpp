// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/FilterLines.h"

#include "bidi/text/LineReader.h"

#include <algorithm>
#include <charconv>

namespace torka::tool {

namespace {

constexpr std::string_view types[] = {"application/vnd.cups-postscript", "application/vnd.cups-command"};

constexpr std::string_view ownProgram = "torkafilter";
constexpr std::string_view blanks = " \t";

// A line "*cupsFilter:" or "*cupsFilter2:" as the print server reads it. The quoted value is
// "TYPE COST PROGRAM" or "TYPE TYPE COST PROGRAM", with "maxsize(BYTES)" ahead of the program or without.
struct ServerLine {
    FilterLine filter; // no type for any other line, no program for a value that the server refuses
    int cost = 0;
    bool isSecondForm = false; // *cupsFilter2
};

// Takes the first field off the text.
std::string_view takeField(std::string_view& text) {
    const std::string_view field = text.substr(0, text.find_first_of(blanks));
    text.remove_prefix(std::min(text.find_first_not_of(blanks, field.size()), text.size()));
    return field;
}

ServerLine readServerLine(std::string_view line) {
    const std::string_view keyword = line.substr(0, line.find_first_of(": \t"));
    const std::size_t quote = line.find('"');
    ServerLine read;
    read.isSecondForm = keyword == "*cupsFilter2";
    if ((keyword != "*cupsFilter" && !read.isSecondForm) || quote == std::string_view::npos) {
        return read;
    }
    std::string_view rest = line.substr(quote + 1);
    rest = rest.substr(0, rest.find('"'));
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    read.filter.type = takeField(rest);
    std::string_view cost = takeField(rest);
    if (cost.find('/') != std::string_view::npos) {
        cost = takeField(rest);
    }
    const auto [end, error] = std::from_chars(cost.data(), cost.data() + cost.size(), read.cost);
    if (error == std::errc() && end == cost.data() + cost.size()) {
        if (rest.starts_with("maxsize(")) {
            takeField(rest);
        }
        read.filter.program = rest.substr(0, rest.find_last_not_of(blanks) + 1);
    }
    return read;
}

std::vector<ServerLine> readServerLines(std::string_view description) {
    std::vector<ServerLine> lines;
    for (std::size_t at = 0; at < description.size(); at = lineAfter(description, lineEnd(description, at))) {
        ServerLine line = readServerLine(description.substr(at, lineEnd(description, at) - at));
        if (!line.filter.type.empty()) {
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

bool isOurType(std::string_view type) { return std::ranges::find(types, type) != std::end(types); }

bool isOurProgram(std::string_view program) {
    return program.substr(program.rfind('/') + 1) == ownProgram; // npos + 1 is 0
}

} // namespace

std::string withFilterLines(std::string_view description) {
    // With one line of the second form, the server takes no line of the first.
    const bool isSecondForm = std::ranges::any_of(readServerLines(description), [](const ServerLine& line) {
        return line.isSecondForm && !isOurType(line.filter.type);
    });
    std::string result;
    for (std::size_t at = 0; at < description.size();) {
        const std::size_t end = lineEnd(description, at);
        const std::size_t next = lineAfter(description, end);
        const std::string_view line = description.substr(at, end - at);
        const std::string_view ending = next > end ? description.substr(end, next - end) : "\n";
        if (!isOurType(readServerLine(line).filter.type)) {
            result.append(line).append(ending);
        }
        if (at == 0) {
            for (const std::string_view type : types) {
                result.append(isSecondForm ? "*cupsFilter2: \"" : "*cupsFilter: \"").append(type);
                result.append(isSecondForm ? " application/postscript 0 " : " 0 ").append(ownProgram);
                result.append("\"").append(ending);
            }
        }
        at = next;
    }
    return result;
}

std::vector<FilterLine> filterLineFaults(std::string_view description) {
    const std::vector<ServerLine> lines = readServerLines(description);
    const bool isSecondForm = std::ranges::any_of(lines, &ServerLine::isSecondForm);
    std::vector<FilterLine> faults;
    for (const std::string_view type : types) {
        // The server takes the lowest cost, and the first of several lines with the same cost.
        const ServerLine* taken = nullptr;
        for (const ServerLine& line : lines) {
            if (line.filter.type == type && line.isSecondForm == isSecondForm &&
                !line.filter.program.empty() && (taken == nullptr || line.cost < taken->cost)) {
                taken = &line;
            }
        }
        if (taken == nullptr) {
            faults.push_back({std::string(type), {}});
        } else if (!isOurProgram(taken->filter.program)) {
            faults.push_back(taken->filter);
        }
    }
    return faults;
}

std::vector<FilterLine> otherFilterLines(std::string_view description) {
    std::vector<FilterLine> others;
    for (ServerLine& line : readServerLines(description)) {
        FilterLine& filter = line.filter;
        if (isOurType(filter.type) && !filter.CallsNone() && !isOurProgram(filter.program)) {
            others.push_back(std::move(filter));
        }
    }
    return others;
}

} // namespace torka::tool
