#pragma once

#include "platform/NetServices.h"

#include <optional>
#include <string>

// The service that a queue's device URI names, where it was discovered.

namespace torka::filter {

// The service of a "dnssd" or "mdns" URI; none for any other URI, and for one that names no service.
std::optional<NetService> serviceOfDevice(const std::string& uri);

// The numeric address at which the Avahi daemon finds that service within two seconds; "" when it finds none.
std::string addressOfService(const NetService& service);

} // namespace torka::filter
