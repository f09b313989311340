// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/TimerQueue.h"

#include <chrono>
#include <map>
#include <memory>

namespace torka::platform {

// A loop over poll(2) for programs without a toolkit. Must outlive its timers and watches. Not thread-safe.
class PosixEventLoop final : public EventLoop {
public:
    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action) override {
        return timers.Install(delay, interval, std::move(action));
    }
    std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events, DescriptorAction action) override;

    // Runs timers and watches until one of them calls Stop() or the time is over.
    void Run(std::chrono::milliseconds duration);
    void Stop() { isStopped = true; }

private:
    class Watcher;
    void Turn(std::chrono::milliseconds longest);

    TimerQueue timers;
    std::map<std::uint64_t, Watcher*> watchers; // in the order of creation
    std::uint64_t nextWatcher = 0;
    bool isStopped = false;
};

} // namespace torka::platform
