// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/EventLoop.h"
#include "platform/NetServices.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace torka::platform {

// A local network in memory that announces the services that a test sets. Answers arrive by timers of
// GetMainEventLoop(), which must be set and outlive it. Must outlive its activities. Not thread-safe.
class MemoryServiceDirectory final : public ServiceDirectory {
public:
    std::unique_ptr<NetServiceActivity> Browse(const std::string& type, const std::string& domain,
                                               ServiceBrowserDelegate& delegate) override;
    std::unique_ptr<NetServiceActivity> Resolve(const NetService& service, std::chrono::milliseconds timeout,
                                                ServiceResolutionDelegate& delegate) override;

    // A service without an answer is found but never resolved.
    void Announce(const NetService& service, std::optional<ResolvedService> answer = std::nullopt);
    void Withdraw(const NetService& service);

    struct Request {
        NetService service;
        std::chrono::milliseconds timeout{0};
    };

    std::string failure;                     // when set, new searches fail with it
    std::chrono::milliseconds answerTime{0}; // duration of a resolution
    std::vector<Request> resolved;           // every resolution begun
    std::size_t running = 0;                 // number of resolutions under way
    std::size_t maximumRunning = 0;          // maximum of `running`
    std::size_t searches = 0;                // number of searches begun

private:
    class Search;
    class Resolution;
    struct Announcement {
        NetService service;
        std::optional<ResolvedService> answer;
    };
    const Announcement* Find(const NetService& service) const;

    std::vector<Announcement> announced;
    std::vector<Search*> live;
};

} // namespace torka::platform
