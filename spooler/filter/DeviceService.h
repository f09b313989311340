// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NetServices.h"

#include <optional>
#include <string>

// Finds the network service that a queue's device URI names.

namespace torka::filter {

// Returns the service of a "dnssd" or "mdns" URI. Returns nothing for any other URI, and for one that names
// no service.
std::optional<NetService> serviceOfDevice(const std::string& uri);

// Returns the numeric address at which the Avahi daemon finds that service within two seconds, else "".
std::string addressOfService(const NetService& service);

} // namespace torka::filter
