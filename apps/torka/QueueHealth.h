// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/QueueFinding.h"

#include <string>
#include <vector>

// Checks what a queue's jobs need besides the server's policy: the queue, its description, the filter and its
// folders, keys, the controller's address and answer, and the module.

namespace torka::tool {

// Takes the queue's own state into account: a stopped queue is asked for nothing. `bundle` is the folder of
// the plug-in's bundle. REQUIRES: the print server has the queue.
std::vector<QueueFinding> checkQueueHealth(const std::string& queueName, const std::string& bundle);

} // namespace torka::tool
