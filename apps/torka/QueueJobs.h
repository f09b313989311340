// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/Command.h"

#include <string>

// Follows a queue's jobs on a terminal.

namespace torka::tool {

// Waits until a job is over. Standard error shows its state when it is a terminal. An interrupt cancels the
// job. `good` for a completed job; `findings`, with the reason on standard error, for any other end.
ExitStatus followJob(const std::string& queueName, int job);

} // namespace torka::tool
