// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/FilterLines.h"

#include <algorithm>

namespace torka::tool {

namespace {

constexpr std::string_view types[] = {"application/vnd.cups-postscript", "application/vnd.cups-command"};

// Matches "*cupsFilter:" and "*cupsFilter2:" lines whose quoted value begins with one of the types.
bool isLineOfOurTypes(std::string_view line) {
    const std::size_t quote = line.find('"');
    if (!line.starts_with("*cupsFilter") || quote == std::string_view::npos) {
        return false;
    }
    const std::string_view value = line.substr(quote + 1);
    const std::string_view type = value.substr(0, value.find(' '));
    return std::ranges::find(types, type) != std::end(types);
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

} // namespace torka::tool
