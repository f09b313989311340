// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/CarriedRecords.h"

#include "bidi/records/RecordEncoding.h"
#include "bidi/text/LineReader.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace torka::tool {

namespace {

constexpr std::string_view firstNumber = "0000";
// Whether the controller's address was valid. The filter writes it anew with each exchange.
constexpr std::string_view addressState = "QVInvalidPrinterAddress";

// The main keyword of a line that could be a chunk; "" for any other line.
std::string_view chunkKeyword(std::string_view line) {
    const std::size_t colon = line.find(':');
    return line.starts_with("*QV") && colon != std::string_view::npos ? line.substr(1, colon - 1) : "";
}

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
        const std::string_view keyword = chunkKeyword(line);
        if (keyword.empty()) {
            continue;
        }
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

// The lines of the record, up to its end mark: chunks behind it are leftovers of a longer record.
std::string recordLines(const ChunkLines& chunks, std::string_view name) {
    ChunkName chunk(name);
    std::string lines;
    bool isWhole = false;
    for (std::size_t number = 0; !isWhole && chunk.SetNumber(number); ++number) {
        const auto line = chunks.byKeyword.find(chunk.Text());
        isWhole = line == chunks.byKeyword.end() || isEndMark(line->second);
        if (line != chunks.byKeyword.end()) {
            lines.append(line->second).append("\n");
        }
    }
    return lines;
}

bool isChunkOf(std::string_view keyword, const std::string& name) {
    constexpr int hexadecimal = 16;
    if (!keyword.starts_with(name)) {
        return false;
    }
    std::size_t number = 0;
    std::from_chars(keyword.data() + name.size(), keyword.data() + keyword.size(), number, hexadecimal);
    ChunkName chunk(name);
    return chunk.SetNumber(number) && chunk.Text() == keyword;
}

} // namespace

CarriedRecords recordsToCarry(std::string_view former, std::string_view description) {
    const ChunkLines held = chunkLines(former);
    const ChunkLines given = chunkLines(description);
    CarriedRecords carried;
    for (const std::string_view name : held.names) {
        if (!ChunkName(name).IsUsable() || name == addressState) {
            continue;
        }
        const std::string lines = recordLines(held, name);
        const bool isGiven = std::ranges::find(given.names, name) != given.names.end();
        if (isGiven && recordLines(given, name) == lines) {
            continue;
        }
        carried.names.emplace_back(name);
        carried.lines += lines;
        if (isGiven) {
            carried.replaced.emplace_back(name);
        }
    }
    return carried;
}

std::string withoutRecords(std::string_view description, const std::vector<std::string>& names) {
    std::string result;
    for (std::size_t at = 0; at < description.size();) {
        const std::size_t next = lineAfter(description, lineEnd(description, at));
        const std::string_view line = description.substr(at, next - at);
        const std::string_view keyword = chunkKeyword(line);
        if (std::ranges::none_of(names, [keyword](const auto& name) { return isChunkOf(keyword, name); })) {
            result.append(line);
        }
        at = next;
    }
    return result;
}

} // namespace torka::tool
