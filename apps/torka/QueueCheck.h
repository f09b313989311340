#pragma once

#include <string>
#include <vector>

// What can be seen from outside about how safe a queue's jobs are.

namespace torka::tool {

enum class CheckState {
    closed, // seen to be safe
    open,   // seen to be unsafe
    unknown // not to be seen by a client, or there is nothing yet to see it by
};

struct QueueFinding {
    std::string what; // a word for scripts
    CheckState state = CheckState::unknown;
    std::string text; // for people: what was seen, and which setting changes it
};

// Asks the print server as somebody whom it does not know, and as the caller. Each row stands for itself; an
// answer that does not come leaves its row unknown.
std::vector<QueueFinding> checkQueue(const std::string& queueName);

} // namespace torka::tool
