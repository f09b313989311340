// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string>
#include <string_view>

// The names under which a controller announces itself in the local net.

namespace torka {

inline constexpr std::string_view printerService = "_printer._tcp";
inline constexpr std::string_view ippService = "_ipp._tcp";
inline constexpr std::string_view ippsService = "_ipps._tcp";
inline constexpr std::string_view dataStreamService = "_pdl-datastream._tcp";
inline constexpr std::string_view localDomain = "local.";

// Every type, in the order in which a URI is searched for them.
inline constexpr std::array controllerServiceTypes{printerService, ippService, ippsService,
                                                   dataStreamService};

// What follows an instance name in a host name: "._ipp._tcp.local.".
inline std::string serviceSuffix(std::string_view type) {
    return "." + std::string(type) + "." + std::string(localDomain);
}

} // namespace torka
