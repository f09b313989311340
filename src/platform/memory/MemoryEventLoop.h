#pragma once

#include "platform/TimerQueue.h"

#include <chrono>
#include <map>

namespace torka::platform {

// A loop whose timers follow the clock of platform::system(): what is due fires when someone turns the loop.
// Descriptors are watched by number alone; a test says what happens to them. Must outlive what it gives.
// Not thread-safe.
class MemoryEventLoop final : public EventLoop {
public:
    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action) override {
        return timers.Install(delay, interval, std::move(action));
    }
    std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events, DescriptorAction action) override;

    // Fires what is due now, each timer at most once, the earliest first: how many fired.
    std::size_t Turn() { return timers.FireDue(); }
    // Lets the clock go on by that time, stopping at every timer that comes due on the way.
    void Run(std::chrono::milliseconds duration);
    // Tells who watches the descriptor for it; failures are told to all.
    void Happen(int descriptor, unsigned events);

    std::size_t Installed() const { return timers.Installed(); } // timers that will fire yet
    std::size_t Watched() const { return watches.size(); }

private:
    class Watcher;

    TimerQueue timers;
    std::multimap<int, Watcher*> watches;
};

} // namespace torka::platform
