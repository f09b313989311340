// SPDX-License-Identifier: Apache-2.0
// Reads arbitrary bytes as a ticket file. The result is a ticket, or a fault with a text.

#include "spooler/TicketReader.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const torka::Result<torka::Ticket> ticket = torka::readTicket({data, size});
    if (!ticket && ticket.Why().text.empty()) {
        std::abort();
    }
    return 0;
}
