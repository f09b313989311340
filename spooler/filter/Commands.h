#pragma once

#include "spooler/filter/ControllerSource.h"
#include "spooler/filter/FilterJob.h"

#include <string_view>

namespace torka::filter {

// Does what a command job asks for; its title names the command, `text` holds its arguments. The answer is
// the filter's exit status; the reason of a failure was told to the server. docs/commands.md describes the
// commands, docs/spooler-filter.md what this filter makes of them.
int runCommand(const FilterJob& job, std::string_view text, ControllerSource& source);

// Longest text of the command with this title, in bytes.
std::size_t mostCommandText(std::string_view title);

} // namespace torka::filter
