// Reads arbitrary bytes as a ticket file. The result is a ticket, or an error with a text, never both.

#include "spooler/TicketReader.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const torka::TicketResult result = torka::readTicket({data, size});
    const bool hasText = !result.error.text.empty();
    const bool isEmpty = result.ticket.entries.empty() && result.ticket.warnings.empty();
    if (static_cast<bool>(result.error) != hasText || (result.error && !isEmpty)) {
        std::abort();
    }
    return 0;
}
