#pragma once

#include <optional>
#include <string>

// Server data as the pane gets it: a queue's filter is asked, and its answer read.

namespace torka::tool {

// The text of the two-way data file that answers. An empty address means the host of the queue's device.
// Nothing, with the reason on standard error, when no answer came. The wait is shown on a terminal's standard
// error; an interrupt ends it.
std::optional<std::string> queueServerData(const std::string& queueName, const std::string& address);

} // namespace torka::tool
