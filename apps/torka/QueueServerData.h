#pragma once

#include <optional>
#include <string>

// Gets server data as the pane does: asks a queue's filter and reads its answer.

namespace torka::tool {

// The text of the two-way data file in the answer. An empty address means the host of the queue's device.
// nullopt, with the reason on standard error, when no answer arrives. Standard error shows the wait when it
// is a terminal. An interrupt ends the wait.
std::optional<std::string> queueServerData(const std::string& queueName, const std::string& address);

} // namespace torka::tool
