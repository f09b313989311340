// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/TicketRoom.h"

#include "spooler/filter/PrivateFolder.h"
#include "spooler/filter/TicketOwner.h"
#include "spooler/filter/TicketStore.h"

#include <unordered_map>
#include <vector>

namespace torka::filter {

namespace {

void add(TicketAmount& sum, std::size_t bytes) {
    ++sum.number;
    sum.bytes += bytes;
}

bool fits(const TicketAmount& sum, const TicketAmount& most) {
    return sum.number <= most.number && sum.bytes <= most.bytes;
}

std::optional<TicketRecord> recordOf(std::string_view ticket) {
    const FileResult<std::string> text =
        PrivateFolder::Read(std::string(ticket).append(ticketOwnerSuffix), maximumOwnerRecord);
    return text ? readTicketRecord(*text) : std::nullopt;
}

Fault noRoom(std::string_view whose, const TicketAmount& most) {
    return {"the print settings that are kept " + std::string(whose) + " fill their room (" +
            std::to_string(most.number) + " jobs, " + std::to_string(most.bytes >> 20U) + " MB)"};
}

} // namespace

Result<void> checkTicketRoom(const Sender& sender, std::size_t bytes) {
    std::unordered_map<std::string, std::size_t> sizes; // of the tickets that are written
    std::vector<std::string> owned;                     // tickets that have a record
    for (PrivateFolder::Entry& entry : PrivateFolder::List()) {
        if (isTicketName(entry.name)) {
            sizes.emplace(std::move(entry.name), entry.bytes);
        } else if (entry.name.ends_with(ticketOwnerSuffix)) {
            entry.name.resize(entry.name.size() - ticketOwnerSuffix.size());
            if (isTicketName(entry.name)) {
                owned.push_back(std::move(entry.name));
            }
        }
    }
    TicketAmount all;
    add(all, bytes);
    for (const std::string& name : owned) {
        const auto size = sizes.find(name);
        if (size != sizes.end()) {
            add(all, size->second);
            continue;
        }
        // Another filter is writing this ticket.
        const std::optional<TicketRecord> record = recordOf(name);
        add(all, record ? record->bytes : 0);
    }
    if (!fits(all, maximumOfAll)) {
        return noRoom("for everybody", maximumOfAll);
    }
    // Saves reading all records in the usual case: all tickets together are within one sender's maximum.
    if (fits(all, maximumOfSender)) {
        return {};
    }
    TicketAmount ofHost;
    TicketAmount ofSender;
    add(ofHost, bytes);
    add(ofSender, bytes);
    for (const std::string& name : owned) {
        const std::optional<TicketRecord> record = recordOf(name);
        if (!record || record->host != sender.host) {
            continue;
        }
        const auto size = sizes.find(name);
        const std::size_t held = size == sizes.end() ? record->bytes : size->second;
        add(ofHost, held);
        if (record->user == sender.user) {
            add(ofSender, held);
        }
    }
    if (!fits(ofSender, maximumOfSender)) {
        return noRoom("for this user", maximumOfSender);
    }
    return fits(ofHost, maximumOfHost) ? Result<void>() : noRoom("for this host", maximumOfHost);
}

} // namespace torka::filter
