// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "spooler/filter/ControllerSource.h"
#include "spooler/filter/FilterJob.h"

#include <string_view>

namespace torka::filter {

// Carries out a command job: its title names the command, `text` holds the arguments. Returns the filter's
// exit status. The server has then received the reason of a failure. docs/commands.md describes the commands,
// docs/spooler-filter.md what this filter does for each.
int runCommand(const FilterJob& job, std::string_view text, ControllerSource& source);

// Returns the maximum length of the text of the command with this title, in bytes.
std::size_t maximumCommandText(std::string_view title);

} // namespace torka::filter
