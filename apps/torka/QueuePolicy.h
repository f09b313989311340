// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/QueueFinding.h"

#include <string>
#include <vector>

// Checks, as a client of the print server, how well the server protects a queue's jobs.

namespace torka::tool {

// Asks the print server as an unknown user and as the caller. The findings are independent of each other; one
// without an answer is `unknown`.
std::vector<QueueFinding> checkQueuePolicy(const std::string& queueName);

} // namespace torka::tool
