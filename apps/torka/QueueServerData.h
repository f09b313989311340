// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <string>

// Gets server data as the pane does: asks a queue's filter and reads its answer.

namespace torka::tool {

// The text of the two-way data file in the answer. An empty address means the host of the queue's device.
// Fails when no answer arrives. Standard error shows the wait when it is a terminal. An interrupt ends the
// wait.
Result<std::string> queueServerData(const std::string& queueName, const std::string& address);

} // namespace torka::tool
