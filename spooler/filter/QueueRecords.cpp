// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/QueueRecords.h"

#include "bidi/records/CPPDMsgHdlr.h"
#include "bidi/records/RecordWriter.h"
#include "spooler/filter/OpenedPPD.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <string_view>

// The library marks its PPD calls as deprecated and has no other calls for a PPD's attributes.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace torka::filter {

namespace {

constexpr std::size_t numberLength = 4; // of a chunk, in hexadecimal digits; five from 65,536 on

using Sizes = std::map<std::string, std::size_t, std::less<>>; // bytes of a chunk's line, by chunk name

std::size_t lineBytes(std::string_view chunk, std::string_view text) {
    constexpr std::size_t others = 4; // "*", ": " and the line's end
    return chunk.size() + std::max<std::size_t>(text.size(), 2) + others;
}

std::size_t totalOf(const Sizes& sizes) {
    std::size_t total = 0;
    for (const auto& [chunk, bytes] : sizes) {
        total += bytes;
    }
    return total;
}

Sizes heldChunks(ppd_file_t* ppd) {
    const std::vector<std::string> names = ppdxRecordNames(ppd);
    const std::set<std::string_view> known(names.begin(), names.end());
    Sizes sizes;
    for (int i = 0; ppd != nullptr && i < ppd->num_attrs; ++i) {
        const ppd_attr_t& attribute = *ppd->attrs[i];
        const std::string_view chunk = attribute.name;
        const std::string_view digits = chunk.substr(chunk.size() - std::min(chunk.size(), numberLength));
        if (digits.find_first_not_of("0123456789abcdef") == std::string_view::npos &&
            known.contains(chunk.substr(0, chunk.size() - digits.size()))) {
            sizes[attribute.name] = lineBytes(chunk, attribute.value == nullptr ? "" : attribute.value);
        }
    }
    return sizes;
}

// The content of the PPD after the records are set, and the chunks to empty then.
struct Plan {
    Sizes sizes;
    std::vector<std::string> leftBehind;
};

// Returns nothing when a record is refused.
std::optional<Plan> plan(const Sizes& held, const std::vector<NamedPayload>& records) {
    Plan result{held, {}};
    for (const auto& [name, payload] : records) {
        std::set<std::string, std::less<>> written;
        const bool isTaken = encodeRecord(name, payload.data(), payload.size(),
                                          [&](std::string_view chunk, std::string_view text) {
                                              written.emplace(chunk);
                                              result.sizes[std::string(chunk)] = lineBytes(chunk, text);
                                          });
        if (!isTaken) {
            return std::nullopt;
        }
        for (auto chunk = held.lower_bound(name); chunk != held.end() && chunk->first.starts_with(name);
             ++chunk) {
            if (chunk->first.size() == name.size() + numberLength && !written.contains(chunk->first) &&
                chunk->second > lineBytes(chunk->first, "")) {
                result.sizes[chunk->first] = lineBytes(chunk->first, "");
                result.leftBehind.push_back(chunk->first);
            }
        }
    }
    return result;
}

} // namespace

Result<void> putRecords(const std::string& queue, std::vector<NamedPayload> records) {
    // The server gives the path of the queue's PPD in the filter's environment.
    const char* path = std::getenv("PPD");
    const OpenedPPD ppd = openDescription(path == nullptr ? "" : path);
    if (ppd) {
        std::erase_if(records, [&ppd](const NamedPayload& record) {
            std::size_t size = 0;
            const RecordBlock held = ppdxReadData(ppd.get(), record.first, &size);
            return held && std::string_view(held.get(), size) == record.second;
        });
    }
    const Sizes held = heldChunks(ppd.get());
    const std::optional<Plan> planned = plan(held, records);
    if (!planned) {
        return Fault{"a record has a name or a length that none can have"};
    }
    const std::size_t total = totalOf(planned->sizes);
    if (total > maximumRecordBytes && total > totalOf(held)) {
        return Fault{"the queue's description would hold " + std::to_string(total) +
                     " bytes of records, and may hold " + std::to_string(maximumRecordBytes)};
    }
    tellDebug(queue + ": " + std::to_string(records.size()) + " records are new in the PPD");
    return sendRecords(records, planned->leftBehind) ? Result<void>() : Fault{"a record cannot be sent"};
}

} // namespace torka::filter
