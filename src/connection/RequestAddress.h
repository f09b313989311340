// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/BidiFilePaths.h"

#include <string>

// The numeric address in a request for server data, beside the address that a person chose. The request
// carries it because the queue's filter looks up no name from a request.

namespace torka {

// Looks up a host name for two seconds at most and returns its first IPv4 address, or its first address when
// it has no IPv4 address. "" for a numeric address, for a text that is no host name, and for an unknown name.
std::string numericAddressOf(const std::string& address);

// The address that the queue's filter found for the service that the queue's device URI names; "" for none.
std::string bonjourAddress(const BidiFilePaths& paths);

} // namespace torka
