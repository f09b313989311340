#pragma once

#include "platform/EventLoop.h"

#include <chrono>
#include <map>
#include <vector>

namespace torka::platform {

// A loop whose timers follow the clock of platform::system(): what is due fires when someone turns the loop.
// Descriptors are watched by number alone; a test says what happens to them. Must outlive what it gives.
// Not thread-safe.
class MemoryEventLoop final : public EventLoop {
public:
    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action) override;
    std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events, DescriptorAction action) override;

    // Fires what is due now, each timer at most once, the earliest first: how many fired.
    std::size_t Turn();
    // Lets the clock go on by that time, stopping at every timer that comes due on the way.
    void Run(std::chrono::milliseconds duration);
    // Tells who watches the descriptor for it; failures are told to all.
    void Happen(int descriptor, unsigned events);

    std::size_t Installed() const; // timers that will fire yet
    std::size_t Watched() const { return watches.size(); }

private:
    class Timer;
    class Watcher;

    std::vector<std::weak_ptr<Timer>> timers; // in the order of installing
    std::multimap<int, Watcher*> watches;
};

} // namespace torka::platform
