#pragma once

#include "platform/EventLoop.h"

#include <avahi-common/watch.h>

namespace torka::platform {

// Avahi's way to ask for an event loop, answered by ours. The loop outlives it, and it outlives the clients
// that were made with it.
class AvahiEventPoll {
public:
    explicit AvahiEventPoll(EventLoop& eventLoop);
    AvahiEventPoll(const AvahiEventPoll&) = delete;
    AvahiEventPoll& operator=(const AvahiEventPoll&) = delete;

    const AvahiPoll* Api() const { return &api; }

private:
    AvahiPoll api{};
};

} // namespace torka::platform
