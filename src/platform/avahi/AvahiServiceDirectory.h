// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/EventLoop.h"
#include "platform/NetServices.h"

#include <memory>

namespace torka::platform {

// The services that the Avahi daemon knows. The first activity connects to the daemon. When the daemon ends,
// every activity fails, and the next activity connects again.
//
// A search reports each service once, even when several interfaces announce it, and at most 2,000 services of
// a type. A resolution returns an IPv4 address as soon as one is known, otherwise the host's name. It may
// fail before its time-out when the daemon gives up.
//
// REQUIRES: the loop outlives it, and it outlives its activities. Not thread-safe.
class AvahiServiceDirectory final : public ServiceDirectory {
public:
    explicit AvahiServiceDirectory(EventLoop& eventLoop);
    ~AvahiServiceDirectory() override;
    std::unique_ptr<NetServiceActivity> Browse(const std::string& type, const std::string& domain,
                                               ServiceBrowserDelegate& delegate) override;
    std::unique_ptr<NetServiceActivity> Resolve(const NetService& service, std::chrono::milliseconds timeout,
                                                ServiceResolutionDelegate& delegate) override;

private:
    class Connection;
    class Activity;
    class Search;
    class Resolution;
    std::unique_ptr<Connection> connection;
};

} // namespace torka::platform
