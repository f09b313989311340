// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/EventLoop.h"

#include <chrono>
#include <optional>
#include <vector>

namespace torka::platform {

// The timers of a loop that polls for due ones. Uses the clock of platform::system(). Not thread-safe.
class TimerQueue {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action);
    // Fires the timers that are due now, each at most once, the earliest first. Returns their number.
    std::size_t FireDue();
    std::optional<TimePoint> NextDue() const;

    // For the tests; no caller here
    std::size_t Installed() const; // number of timers that will still fire

private:
    class Timer;
    std::vector<std::weak_ptr<Timer>> timers; // in the order of installation
};

} // namespace torka::platform
