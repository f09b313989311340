// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace torka::tool {

enum class CheckState {
    good,
    fault,  // jobs fail, or lack something
    closed, // protected
    open,   // unprotected
    unknown // it cannot be seen from here
};

// The answer to one question about a queue.
struct QueueFinding {
    std::string what; // one word, for scripts
    CheckState state = CheckState::unknown;
    std::string text;        // for people: the observation
    std::string remedy = {}; // what to do; "" when there is nothing to do
};

} // namespace torka::tool
