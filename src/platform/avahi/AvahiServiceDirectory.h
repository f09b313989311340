#pragma once

#include "platform/EventLoop.h"
#include "platform/NetServices.h"

#include <memory>

namespace torka::platform {

// The services that the Avahi daemon knows. The client to the daemon is made with the first activity; when
// the daemon goes, every activity fails, and the next one that is begun looks for it again.
//
// Searches tell each service once, over however many interfaces it is announced, and no more than 2,000 of a
// type. A resolution gives an IPv4 address as soon as there is one, and otherwise the host's name. It may
// fail before its time-out, when the daemon gives up.
//
// The loop outlives it, and it outlives the activities that it gives. Not thread-safe.
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
