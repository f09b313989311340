// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

// Names under which the pane, the command line and the queue's filter find a job's ticket.

namespace torka {

inline constexpr std::string_view bundleIdentifier =
    "org.torka.print.pde.5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85.PInf";
// The print setting, and job option, that holds the path of the job's ticket.
inline constexpr std::string_view ticketPathSetting =
    "ZAN.PSData.org.torka.print.pde.5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85.PInf";

// The print setting that holds the choices which the ticket has no room for: a dictionary from a main keyword
// without its asterisk to the choice. Who submits the job gives them to the print server as job options.
inline constexpr std::string_view systemChoicesSetting =
    "ZAN.SystemChoices.org.torka.print.pde.5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85.PInf";

} // namespace torka
