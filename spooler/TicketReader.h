// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "output/InjectionSite.h"
#include "platform/Result.h"
#include "spooler/FeatureGuard.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

// Reads the job ticket file: an XML property list whose root array alternates a 32-bit site number and the
// bytes for that site. docs/ticket.md describes it.

namespace torka {

// Larger files are refused. The reader of property lists also limits the number of values (100,000, half as
// many entries). A hostile file thus cannot take more memory than a multiple of its size.
inline constexpr std::size_t maximumTicketBytes = std::size_t{64} * 1024 * 1024;

struct TicketEntry {
    PostScriptInjectionSite site = 0;
    std::string bytes; // any bytes, NUL included
};

struct TicketWarning {
    std::size_t entry = 0; // counted from 0
    std::string text;
};

// Owns the bytes of its entries. An entry whose site is unknown is not among `entries`; it leaves a warning.
struct Ticket {
    std::vector<TicketEntry> entries; // in the order of the file
    std::vector<TicketWarning> warnings;
    // Keywords of feature code that stops the job when it fails. Not in the file: the caller takes it from
    // the queue's description (unguardedNotes). Without it the Splicer guards nothing.
    std::optional<KeywordSet> unguarded;
};

// The place of a fault is the file's name and the entry, counted from 0, as far as they are known:
// "NAME: entry 3". A function without a file tells the entry alone.
Result<Ticket> readTicket(std::span<const std::uint8_t> propertyList);
Result<Ticket> readTicketFile(const std::string& path);
// For a filter that has checked the open file itself. Reads from the descriptor's position to the end of the
// file and leaves the descriptor open. `name` is the place of a fault.
Result<Ticket> readTicketFile(int descriptor, const std::string& name);

} // namespace torka
