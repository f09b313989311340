// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bidi/commands/Wait.h"

#include <string>

namespace torka::tool {

// While an object lives, an interrupt (Ctrl+C) ends the wait under way instead of the process. Only one
// object may exist at a time.
class Interruptible {
public:
    Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
    ~Interruptible();

private:
    void (*before)(int);
};

// Shows on a terminal how many seconds the wait for `what` has lasted.
WaitObserver showingWait(std::string what);

} // namespace torka::tool
