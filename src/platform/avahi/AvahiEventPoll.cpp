// SPDX-License-Identifier: Apache-2.0
#include "platform/avahi/AvahiEventPoll.h"

#include <avahi-common/timeval.h>

#include <algorithm>
#include <memory>

// Avahi declares these two types and leaves their definition to the loop's author.

struct AvahiWatch {
    int descriptor;
    AvahiWatchCallback callback;
    void* userdata;
    AvahiWatchEvent happened{};
    std::unique_ptr<torka::platform::DescriptorWatch> watch;
};

struct AvahiTimeout {
    torka::platform::EventLoop* loop;
    AvahiTimeoutCallback callback;
    void* userdata;
    torka::platform::EventLoopTimerRef timer;
};

namespace torka::platform {

namespace {

unsigned loopEvents(AvahiWatchEvent event) {
    const auto bits = static_cast<unsigned>(event);
    return ((bits & AVAHI_WATCH_IN) != 0 ? unsigned{descriptorReadable} : 0U) |
           ((bits & AVAHI_WATCH_OUT) != 0 ? unsigned{descriptorWritable} : 0U);
}

AvahiWatchEvent avahiEvents(unsigned happened) {
    const unsigned bits = ((happened & descriptorReadable) != 0 ? unsigned{AVAHI_WATCH_IN} : 0U) |
                          ((happened & descriptorWritable) != 0 ? unsigned{AVAHI_WATCH_OUT} : 0U) |
                          ((happened & descriptorFailed) != 0 ? unsigned{AVAHI_WATCH_HUP} : 0U);
    return static_cast<AvahiWatchEvent>(bits);
}

AvahiWatch* newWatch(const AvahiPoll* api, int descriptor, AvahiWatchEvent event, AvahiWatchCallback callback,
                     void* userdata) {
    auto watch = std::make_unique<AvahiWatch>();
    watch->descriptor = descriptor;
    watch->callback = callback;
    watch->userdata = userdata;
    AvahiWatch* const told = watch.get();
    // Touches nothing after the callback, which may free the watch.
    const auto tell = [told](unsigned happened) {
        told->happened = avahiEvents(happened);
        told->callback(told, told->descriptor, told->happened, told->userdata);
    };
    watch->watch = static_cast<EventLoop*>(api->userdata)->Watch(descriptor, loopEvents(event), tell);
    return watch.release();
}

void updateWatch(AvahiWatch* watch, AvahiWatchEvent event) { watch->watch->Update(loopEvents(event)); }

AvahiWatchEvent happenedEvents(AvahiWatch* watch) { return watch->happened; }

void freeWatch(AvahiWatch* watch) { delete watch; }

void updateTimeout(AvahiTimeout* timeout, const timeval* when) {
    timeout->timer.reset();
    if (when == nullptr) {
        return;
    }
    const EventTimerInterval delay = std::chrono::microseconds(
        std::max<AvahiUsec>(-avahi_age(when), 0)); // avahi_age is negative for a future time
    const auto fire = [timeout](const EventLoopTimerRef&) { timeout->callback(timeout, timeout->userdata); };
    InstallEventLoopTimer(timeout->loop, delay, kEventDurationForever, fire, timeout->timer);
}

AvahiTimeout* newTimeout(const AvahiPoll* api, const timeval* when, AvahiTimeoutCallback callback,
                         void* userdata) {
    auto timeout = std::make_unique<AvahiTimeout>();
    timeout->loop = static_cast<EventLoop*>(api->userdata);
    timeout->callback = callback;
    timeout->userdata = userdata;
    updateTimeout(timeout.get(), when);
    return timeout.release();
}

void freeTimeout(AvahiTimeout* timeout) { delete timeout; }

} // namespace

AvahiEventPoll::AvahiEventPoll(EventLoop& eventLoop) {
    api.userdata = &eventLoop;
    api.watch_new = newWatch;
    api.watch_update = updateWatch;
    api.watch_get_events = happenedEvents;
    api.watch_free = freeWatch;
    api.timeout_new = newTimeout;
    api.timeout_update = updateTimeout;
    api.timeout_free = freeTimeout;
}

} // namespace torka::platform
