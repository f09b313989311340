#pragma once

#include "output/InjectionSite.h"

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
};

struct TicketError {
    enum class Code {
        none,
        cannotRead, // the operating system refused; the text ends with its reason
        notARegularFile,
        tooLarge, // beyond maximumTicketBytes
        notAPropertyList,
        notAnArray,
        missingData, // an odd number of elements: the last site has no bytes
        badSite,     // not an integer, or beyond 32 bits
        badData,     // not a data element
    };
    Code code = Code::none;
    std::optional<std::size_t> entry; // the entry at fault, counted from 0
    std::string text;                 // one line that says what is wrong and where

    explicit operator bool() const { return code != Code::none; }
};

struct TicketResult {
    Ticket ticket; // empty when there is an error
    TicketError error;
};

TicketResult readTicket(std::span<const std::uint8_t> propertyList);
TicketResult readTicketFile(const std::string& path);
// For a filter that has checked the open file itself. Reads from the descriptor's position to the end of the
// file and leaves the descriptor open. `name` appears in error texts.
TicketResult readTicketFile(int descriptor, const std::string& name);

} // namespace torka
