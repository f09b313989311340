// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/EventLoop.h"

#include <avahi-common/watch.h>

namespace torka::platform {

// Implements Avahi's poll interface with our event loop. REQUIRES: the loop outlives it, and it outlives the
// clients created with it.
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
