#pragma once

#include "platform/EventLoop.h"

#include <chrono>
#include <optional>
#include <vector>

namespace torka::platform {

// The timers of a loop that asks itself what is due, by the clock of platform::system(). Not thread-safe.
class TimerQueue {
public:
    using TimePoint = std::chrono::steady_clock::time_point;

    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action);
    // Fires what is due now, each timer at most once, the earliest first: how many fired.
    std::size_t FireDue();
    std::optional<TimePoint> NextDue() const;
    std::size_t Installed() const; // timers that will fire yet

private:
    class Timer;
    std::vector<std::weak_ptr<Timer>> timers; // in the order of installing
};

} // namespace torka::platform
