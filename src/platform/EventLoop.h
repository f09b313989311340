// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <chrono>
#include <functional>
#include <memory>

// The main event loop: timers, and watches that report when a descriptor can be read or written.
//
// One loop, the host's, serves the process. The host sets it at start with setMainEventLoop. The loop calls
// every action on the main thread, and never within the call that installed it.

namespace torka::platform {

using EventTimerInterval = std::chrono::duration<double>; // seconds

inline constexpr EventTimerInterval kEventDurationForever{0}; // as an interval: the timer fires once
inline constexpr OSStatus eventInternalErr = -9868;           // the loop has no more timers

// An installed timer. It ends when it is removed or its last handle goes. A timer without an interval fires
// once. Its action may remove it and may install others.
class EventLoopTimer {
public:
    EventLoopTimer() = default;
    EventLoopTimer(const EventLoopTimer&) = delete;
    EventLoopTimer& operator=(const EventLoopTimer&) = delete;
    virtual ~EventLoopTimer();
    virtual void Remove() = 0;
};
using EventLoopTimerRef = std::shared_ptr<EventLoopTimer>;
using EventLoopTimerAction = std::function<void(const EventLoopTimerRef& timer)>;

// Bits for the events that a descriptor is watched for, and for those that happened.
enum DescriptorEvents : unsigned {
    descriptorReadable = 1,
    descriptorWritable = 2,
    descriptorFailed = 4, // hung up or broken; always reported
};

// Watches a descriptor until the watch is destroyed. The caller keeps the descriptor. The action may destroy
// the watch.
class DescriptorWatch {
public:
    DescriptorWatch() = default;
    DescriptorWatch(const DescriptorWatch&) = delete;
    DescriptorWatch& operator=(const DescriptorWatch&) = delete;
    virtual ~DescriptorWatch();
    virtual void Update(unsigned events) = 0;
};
using DescriptorAction = std::function<void(unsigned happened)>;

class EventLoop {
public:
    EventLoop() = default;
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;
    virtual ~EventLoop();
    // The timer fires after `delay`, then at each `interval`, or only once. Null when the loop has no more
    // timers.
    virtual EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                                      EventLoopTimerAction action) = 0;
    virtual std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events,
                                                   DescriptorAction action) = 0;
};

// The loop set last; null before the first.
EventLoop* GetMainEventLoop();
void setMainEventLoop(std::unique_ptr<EventLoop> loop);

// eventInternalErr, with a null handle, for a null loop and when the loop has no more timers.
OSStatus InstallEventLoopTimer(EventLoop* loop, EventTimerInterval delay, EventTimerInterval interval,
                               EventLoopTimerAction action, EventLoopTimerRef& timer);
// eventInternalErr for a null handle. The caller keeps the handle.
OSStatus RemoveEventLoopTimer(const EventLoopTimerRef& timer);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
