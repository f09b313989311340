// SPDX-License-Identifier: Apache-2.0
#include "platform/EventLoop.h"

#include "platform/Printing.h"

#include <utility>

namespace torka::platform {

namespace {

std::unique_ptr<EventLoop>& mainLoopSlot() {
    static std::unique_ptr<EventLoop> slot;
    return slot;
}

} // namespace

EventLoopTimer::~EventLoopTimer() = default;
DescriptorWatch::~DescriptorWatch() = default;
EventLoop::~EventLoop() = default;

EventLoop* GetMainEventLoop() { return mainLoopSlot().get(); }

void setMainEventLoop(std::unique_ptr<EventLoop> loop) { mainLoopSlot() = std::move(loop); }

OSStatus InstallEventLoopTimer(EventLoop* loop, EventTimerInterval delay, EventTimerInterval interval,
                               EventLoopTimerAction action, EventLoopTimerRef& timer) {
    timer = loop != nullptr ? loop->Install(delay, interval, std::move(action)) : nullptr;
    return timer ? noErr : eventInternalErr;
}

OSStatus RemoveEventLoopTimer(const EventLoopTimerRef& timer) {
    if (!timer) {
        return eventInternalErr;
    }
    timer->Remove();
    return noErr;
}

} // namespace torka::platform
