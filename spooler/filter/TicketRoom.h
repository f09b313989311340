#pragma once

#include "spooler/filter/FilterNotes.h"

#include <cstddef>
#include <string>
#include <string_view>

// How many tickets are kept, and how large they may be together.

namespace torka::filter {

struct TicketAmount {
    std::size_t number = 0;
    std::size_t bytes = 0;
};
// Of one user on one host; of one host, whatever names it gives its users; of all.
inline constexpr TicketAmount mostOfSender{2000, std::size_t{256} << 20U};
inline constexpr TicketAmount mostOfHost{10'000, std::size_t{1} << 30U};
inline constexpr TicketAmount mostOfAll{20'000, std::size_t{2} << 30U};

// "", or why there is no room for one more ticket of this length. Nothing is removed to make room: each
// ticket that is kept belongs to a job that may still print. REQUIRES: the lock of TicketStore.
std::string ticketRoomProblem(const Sender& sender, std::size_t bytes);

} // namespace torka::filter
