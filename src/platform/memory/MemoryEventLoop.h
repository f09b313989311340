// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/TimerQueue.h"

#include <chrono>
#include <map>

namespace torka::platform {

// A loop whose timers follow the clock of platform::system(). Due timers fire in Turn and Run. Descriptors
// are mere numbers; a test reports their events with Happen. Must outlive its timers and watches. Not
// thread-safe.
class MemoryEventLoop final : public EventLoop {
public:
    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action) override {
        return timers.Install(delay, interval, std::move(action));
    }
    std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events, DescriptorAction action) override;

    // Fires the timers that are due now, each at most once, the earliest first. Returns their number.
    std::size_t Turn() { return timers.FireDue(); }
    // Advances the clock by that time and fires each timer when it comes due.
    void Run(std::chrono::milliseconds duration);
    // Reports events to the descriptor's watches that asked for them; reports a failure to every watch.
    void Happen(int descriptor, unsigned events);

    std::size_t Installed() const { return timers.Installed(); } // number of timers that will still fire
    std::size_t Watched() const { return watches.size(); }

private:
    class Watcher;

    TimerQueue timers;
    std::multimap<int, Watcher*> watches;
};

} // namespace torka::platform
