#pragma once

#include "platform/CoreFoundation.h"

#include <chrono>
#include <functional>
#include <memory>

// The main event loop: timers, and descriptors that are watched until something can be read or written.
//
// One loop serves the process, the host's. It is chosen once at start with setMainEventLoop. Everything is
// called on the main thread, and never from within the call that installed it.

namespace torka::platform {

using EventTimerInterval = std::chrono::duration<double>; // seconds

inline constexpr EventTimerInterval kEventDurationForever{0}; // as an interval: the timer fires once
inline constexpr OSStatus eventInternalErr = -9868;           // the loop gives no timer

// A timer that was installed. It ends when it is removed, or with its last handle; one that fires once stays
// silent afterwards. Its action may remove it and may install others.
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

// What a descriptor is watched for, and what happened to it; together as bits.
enum DescriptorEvents : unsigned {
    descriptorReadable = 1,
    descriptorWritable = 2,
    descriptorFailed = 4, // hung up or broken: told without being asked for
};

// Watches a descriptor, which stays the caller's, until it is destroyed; its action may do that.
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
    // First fires after `delay`, then each `interval`, or only once. Null when the loop has no more timers.
    virtual EventLoopTimerRef Install(EventTimerInterval delay, EventTimerInterval interval,
                                      EventLoopTimerAction action) = 0;
    virtual std::unique_ptr<DescriptorWatch> Watch(int descriptor, unsigned events,
                                                   DescriptorAction action) = 0;
};

// The chosen loop, null until one was chosen.
EventLoop* GetMainEventLoop();
void setMainEventLoop(std::unique_ptr<EventLoop> loop);

// eventInternalErr, with a null handle, for a null loop and when the loop gives no timer.
OSStatus InstallEventLoopTimer(EventLoop* loop, EventTimerInterval delay, EventTimerInterval interval,
                               EventLoopTimerAction action, EventLoopTimerRef& timer);
// eventInternalErr for a null handle. The handle stays the caller's to drop.
OSStatus RemoveEventLoopTimer(const EventLoopTimerRef& timer);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
