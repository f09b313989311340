// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"
#include "spooler/filter/FilterNotes.h"

#include <cstddef>

// Limits the number of tickets that are kept, and their total size.

namespace torka::filter {

struct TicketAmount {
    std::size_t number = 0;
    std::size_t bytes = 0;
};
// Maximum for one user on one host, for one host with all its user names, and for everybody.
inline constexpr TicketAmount maximumOfSender{2000, std::size_t{256} << 20U};
inline constexpr TicketAmount maximumOfHost{10'000, std::size_t{1} << 30U};
inline constexpr TicketAmount maximumOfAll{20'000, std::size_t{2} << 30U};

// Fails when there is no room for one more ticket of this length. Removes nothing to make room: each ticket
// belongs to a job that may still print. REQUIRES: the lock of TicketStore.
Result<void> checkTicketRoom(const Sender& sender, std::size_t bytes);

} // namespace torka::filter
