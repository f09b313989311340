// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "connection/SimplePing.h"

#include <string>

// Echo requests of the commands `ping` and `queue check`.

namespace torka::tool {

// The text of an error number of SimplePing.h.
std::string pingFailure(int error);
// Sends one echo request. Waits `timeout` seconds for its reply, in steps of one second, so that a reply ends
// the wait early. Returns an error number, or 0; then `replied` holds the number of replies.
int exchangeEcho(IcmpSocket& socket, const HostAddress& address, int sequence, int timeout, int& replied);

} // namespace torka::tool
