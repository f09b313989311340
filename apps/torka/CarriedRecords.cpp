// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/CarriedRecords.h"

#include "bidi/records/RecordEncoding.h"
#include "bidi/text/LineReader.h"

#include <algorithm>
#include <unordered_map>

namespace torka::tool {

namespace {

constexpr std::string_view firstNumber = "0000";

// The lines of main keywords that could be chunks, by keyword, and the names of records, in order.
struct ChunkLines {
    std::unordered_map<std::string_view, std::string_view> byKeyword;
    std::vector<std::string_view> names;
};

ChunkLines chunkLines(std::string_view description) {
    ChunkLines chunks;
    for (std::size_t at = 0; at < description.size();) {
        const std::size_t end = lineEnd(description, at);
        const std::string_view line = description.substr(at, end - at);
        at = lineAfter(description, end);
        const std::size_t colon = line.find(':');
        if (!line.starts_with("*QV") || colon == std::string_view::npos) {
            continue;
        }
        const std::string_view keyword = line.substr(1, colon - 1);
        const bool isNew = chunks.byKeyword.try_emplace(keyword, line).second;
        if (isNew && keyword.size() > 2 + firstNumber.size() && keyword.ends_with(firstNumber)) {
            chunks.names.push_back(keyword.substr(0, keyword.size() - firstNumber.size()));
        }
    }
    return chunks;
}

bool isEndMark(std::string_view line) {
    return line.substr(line.find(':') + 1).find_first_not_of(" \t\"") == std::string_view::npos;
}

} // namespace

CarriedRecords recordsToCarry(std::string_view former, std::string_view description) {
    const ChunkLines held = chunkLines(former);
    const ChunkLines given = chunkLines(description);
    CarriedRecords carried;
    for (const std::string_view name : held.names) {
        ChunkName chunk(name);
        if (!chunk.IsUsable() || std::ranges::find(given.names, name) != given.names.end()) {
            continue;
        }
        carried.names.emplace_back(name);
        bool isWhole = false; // chunks behind the end mark are leftovers of a longer record
        for (std::size_t number = 0; !isWhole && chunk.SetNumber(number); ++number) {
            const auto line = held.byKeyword.find(chunk.Text());
            isWhole = line == held.byKeyword.end() || isEndMark(line->second);
            if (line != held.byKeyword.end()) {
                carried.lines.append(line->second).append("\n");
            }
        }
    }
    return carried;
}

} // namespace torka::tool
