// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/EventLoop.h"

#include <memory>

namespace torka::platform {

// The loop of a Qt application. Create it after the QCoreApplication, on its thread, and destroy it before.
// Must outlive its watches. Remaining timers end with it.
class QtEventLoop final : public EventLoop {
public:
    QtEventLoop();
    ~QtEventLoop() override;
    EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                              EventLoopTimerAction action) override;
    std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events, DescriptorAction action) override;

private:
    class Hub;
    class Timer;
    class Watcher;
    std::shared_ptr<Hub> hub;
};

} // namespace torka::platform
