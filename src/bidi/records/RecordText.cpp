// SPDX-License-Identifier: Apache-2.0
#include "bidi/records/RecordText.h"

#include "bidi/records/RecordReader.h"
#include "bidi/text/LineReader.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <set>
#include <unordered_map>
#include <unordered_set>

namespace torka {

std::size_t findFrom(std::string_view text, std::string_view wanted, std::size_t position) {
    if (text.empty() || position > text.size()) {
        return std::string_view::npos;
    }
    const void* found = memmem(text.data() + position, text.size() - position, wanted.data(), wanted.size());
    return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
                 : std::string_view::npos;
}

namespace {

constexpr std::string_view firstNumber = "0000";
constexpr std::size_t separatorLength = 2; // ": "
constexpr std::size_t maximumPositions = 65536;

constexpr std::size_t nowhere = std::string_view::npos;

// The places where chunks of the named records may stand in a text: each name, anywhere in a line, with four
// digits behind it. One pass finds them all. A search of its own for each record without an end mark would
// read the rest of the text each time.
class ChunkPlaces {
public:
    // REQUIRES: both outlive the object.
    ChunkPlaces(std::string_view content, const std::vector<std::string>& names)
        : text(content) {
        std::set<std::size_t> lengths;
        for (const std::string& name : names) {
            places.try_emplace(name);
            lengths.insert(name.size());
        }
        std::size_t digits = 0; // in a row, up to `end`
        for (std::size_t end = 1; end <= text.size(); ++end) {
            digits = isChunkDigit(text[end - 1]) ? digits + 1 : 0;
            if (digits >= firstNumber.size()) {
                Add(end - firstNumber.size(), lengths);
            }
        }
    }
    // As findFrom with the chunk's text.
    std::size_t Find(std::string_view name, std::string_view chunk, std::size_t from) const {
        const std::vector<std::uint32_t>& numbers = places.find(name)->second;
        if (numbers.size() == maximumPositions) {
            return findFrom(text, chunk, from);
        }
        for (auto at = std::ranges::lower_bound(numbers, from + name.size()); at != numbers.end(); ++at) {
            if (text.substr(*at - name.size()).starts_with(chunk)) {
                return *at - name.size();
            }
        }
        return nowhere;
    }

private:
    static bool isChunkDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }
    void Add(std::size_t number, const std::set<std::size_t>& lengths) {
        for (const std::size_t length : lengths) {
            if (length > number) {
                break;
            }
            const auto found = places.find(text.substr(number - length, length));
            // The limit holds for texts made of digits. Find searches the text for a name that reaches it.
            if (found != places.end() && found->second.size() < maximumPositions) {
                found->second.push_back(static_cast<std::uint32_t>(number));
            }
        }
    }

    std::string_view text;
    std::unordered_map<std::string_view, std::vector<std::uint32_t>> places;
};

// `find` returns the first position of a chunk's text at or after a position.
//
// The first occurrence of a chunk name lies in the first line that holds it, because a chunk name has no line
// end. Usually it is the next line.
template <typename Find>
RecordBlock readRecord(std::string_view text, std::size_t position, ChunkName chunk, Find find,
                       std::size_t& size) {
    size = 0;
    if (position == nowhere) {
        return nullptr;
    }
    RecordReader reader;
    std::array<char, chunkTextBuffer> buffer{};
    for (std::size_t number = 1; position != nowhere; ++number) {
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
        position = text.substr(next).starts_with(chunk.Text()) ? next : find(chunk.Text(), next);
    }
    return reader.Finish(size);
}

} // namespace

RecordBlock readRecordAt(std::string_view text, std::size_t position, ChunkName chunk, std::size_t& size) {
    return readRecord(
        text, position, std::move(chunk),
        [text](const std::string& name, std::size_t from) { return findFrom(text, name, from); }, size);
}

RecordText::RecordText(std::string_view content)
    : text(content) {
    for (std::size_t at = findFrom(text, firstNumber, 0); at != std::string_view::npos;
         at = findFrom(text, firstNumber, at + 1)) {
        if (zeros.size() == maximumPositions) {
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
    for (std::size_t at = findFrom(text, firstNumber, 0); at != nowhere;
         at = findFrom(text, firstNumber, at + 1)) {
        // A name stands at the start of its line, and ": " follows its number.
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

std::vector<std::pair<std::string, std::size_t>> RecordText::Sizes() const {
    const std::vector<std::string> names = Names();
    const ChunkPlaces places(text, names);
    std::vector<std::pair<std::string, std::size_t>> sizes;
    for (const std::string& name : names) {
        const auto find = [&](const std::string& chunk, std::size_t from) {
            return places.Find(name, chunk, from);
        };
        const ChunkName chunk(name);
        std::size_t size = 0;
        readRecord(text, find(chunk.Text(), 0), chunk, find, size);
        sizes.emplace_back(name, size);
    }
    return sizes;
}

} // namespace torka
