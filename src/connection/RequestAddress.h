#pragma once

#include "bidi/commands/BidiFilePaths.h"

#include <string>

// The numeric address that a request of server data takes along beside the address that a person chose: the
// queue's filter looks up no name that comes in a request.

namespace torka {

// What the look-up of a host name gives within two seconds, its first IPv4 address where it has one. "" for a
// text that is numeric already or no host name, and for a name that is not found.
std::string numericAddressOf(const std::string& address);

// The address that the queue's filter found for the service that the queue's device URI names; "" for none.
std::string bonjourAddress(const BidiFilePaths& paths);

} // namespace torka
