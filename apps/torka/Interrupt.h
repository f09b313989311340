#pragma once

#include "bidi/commands/Wait.h"

#include <string>

namespace torka::tool {

// An interrupt (Ctrl+C) ends the process's waits, instead of the process, while this lives. One at a time.
class Interruptible {
public:
    Interruptible();
    Interruptible(const Interruptible&) = delete;
    Interruptible& operator=(const Interruptible&) = delete;
    ~Interruptible();

private:
    void (*before)(int);
};

// Shows on a terminal for how long `what` has been waited for.
WaitObserver showingWait(std::string what);

} // namespace torka::tool
