// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

// Checks, as a client of the print server, how well the server protects a queue's jobs.

namespace torka::tool {

enum class CheckState {
    closed, // protected
    open,   // unprotected
    unknown // a client cannot see it, or no job or subscription exists to see it by
};

struct QueueFinding {
    std::string what; // one word, for scripts
    CheckState state = CheckState::unknown;
    std::string text; // for people: the observation, and the setting that changes it
};

// Asks the print server as an unknown user and as the caller. The findings are independent of each other; one
// without an answer is `unknown`.
std::vector<QueueFinding> checkQueue(const std::string& queueName);

} // namespace torka::tool
