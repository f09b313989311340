#include "bidi/RecordText.h"

#include "bidi/LineReader.h"
#include "bidi/RecordReader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

namespace torka {

namespace {

constexpr std::string_view firstNumber = "0000";
constexpr std::size_t separatorLength = 2; // ": "
constexpr std::size_t mostPositions = 65536;

} // namespace

std::size_t findFrom(std::string_view text, std::string_view wanted, std::size_t position) {
    if (text.empty() || position > text.size()) {
        return std::string_view::npos;
    }
    const void* found = memmem(text.data() + position, text.size() - position, wanted.data(), wanted.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

// The first place of a chunk name in the text lies in the first line that holds it, since no chunk name holds
// a line end. Usually that is where the line before ended.
RecordBlock readRecordAt(std::string_view text, std::size_t position, ChunkName chunk, std::size_t& size) {
    size = 0;
    if (position == std::string_view::npos) {
        return nullptr;
    }
    RecordReader reader;
    std::array<char, chunkTextBuffer> buffer{};
    for (std::size_t number = 1; position != std::string_view::npos; ++number) {
        const std::size_t nameEnd = position + chunk.Text().size();
        const std::size_t end = lineEnd(text, nameEnd);
        const std::size_t begin = std::min(nameEnd + separatorLength, end);
        const std::size_t length = std::min(end - begin, buffer.size() - 1);
        std::memcpy(buffer.data(), text.data() + begin, length);
        buffer[length] = '\0';
        if (!reader.Add(buffer.data()) || !chunk.SetNumber(number)) {
            break;
        }
        const std::size_t next = lineAfter(text, end);
        position = text.substr(next).starts_with(chunk.Text()) ? next : findFrom(text, chunk.Text(), next);
    }
    return reader.Finish(size);
}

RecordText::RecordText(std::string_view content)
    : text(content) {
    for (std::size_t at = findFrom(text, firstNumber, 0); at != std::string_view::npos;
         at = findFrom(text, firstNumber, at + 1)) {
        if (zeros.size() == mostPositions) {
            indexed = false;
            return;
        }
        zeros.push_back(at);
    }
}

RecordBlock RecordText::Read(std::string_view recordName, std::size_t* size) const {
    std::size_t payloadSize = 0;
    RecordBlock payload;
    const ChunkName chunk(recordName);
    if (chunk.IsUsable() && indexed) {
        const auto place = std::find_if(zeros.begin(), zeros.end(), [&](std::size_t at) {
            return text.substr(0, at).ends_with(recordName);
        });
        const std::size_t position =
            place == zeros.end() ? std::string_view::npos : *place - recordName.size();
        payload = readRecordAt(text, position, chunk, payloadSize);
    } else if (chunk.IsUsable()) {
        payload = readRecordAt(text, findFrom(text, chunk.Text(), 0), chunk, payloadSize);
    }
    if (size) {
        *size = payloadSize;
    }
    return payload;
}

std::vector<std::string> RecordText::Names() const {
    std::vector<std::string> names;
    std::unordered_set<std::string_view> seen;
    for (const std::size_t at : zeros) {
        // A name stands at the start of its line, and its number is followed by ": ".
        const std::size_t first = at > maximumRecordName ? at - maximumRecordName - 1 : 0;
        const std::string_view before = text.substr(first, at - first);
        const std::size_t lineStart = before.find_last_of("\r\n");
        const std::string_view name =
            lineStart == std::string_view::npos ? before : before.substr(lineStart + 1);
        const bool whole = lineStart != std::string_view::npos || first == 0;
        if (whole && !name.empty() && name.size() <= maximumRecordName &&
            name.find(':') == std::string_view::npos &&
            text.substr(at + firstNumber.size()).starts_with(": ") && seen.insert(name).second) {
            names.emplace_back(name);
        }
    }
    return names;
}

std::vector<std::pair<std::string, std::size_t>> RecordText::Places() const {
    constexpr std::size_t none = std::string_view::npos;
    std::vector<std::pair<std::string, std::size_t>> places;
    for (std::string& name : Names()) {
        places.emplace_back(std::move(name), none);
    }
    std::unordered_map<std::string_view, std::size_t*> missing;
    for (auto& [name, position] : places) {
        missing.emplace(name, &position);
    }
    for (const std::size_t at : zeros) {
        for (std::size_t length = 1; length <= std::min(at, maximumRecordName); ++length) {
            const auto found = missing.find(text.substr(at - length, length));
            if (found != missing.end() && *found->second == none) {
                *found->second = at - length;
            }
        }
    }
    return places;
}

} // namespace torka
