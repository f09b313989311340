#pragma once

#include "platform/EventLoop.h"
#include "platform/NetServices.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace torka::platform {

// A local net that announces what it is told. Answers come by timers of GetMainEventLoop(), which must be
// chosen and outlive it. Must outlive the activities it gives. Not thread-safe.
class MemoryServiceDirectory final : public ServiceDirectory {
public:
    std::unique_ptr<NetServiceActivity> Browse(const std::string& type, const std::string& domain,
                                               ServiceBrowserDelegate& delegate) override;
    std::unique_ptr<NetServiceActivity> Resolve(const NetService& service, std::chrono::milliseconds timeout,
                                                ServiceResolutionDelegate& delegate) override;

    // Without an answer it is found and never resolved.
    void Announce(const NetService& service, std::optional<ResolvedService> answer = std::nullopt);
    void Withdraw(const NetService& service);

    struct Request {
        NetService service;
        std::chrono::milliseconds timeout{0};
    };

    std::string failure;                     // when set, searches begun from now on fail with it
    std::chrono::milliseconds answerTime{0}; // of a resolution
    std::vector<Request> resolved;           // every resolution that was begun
    std::size_t running = 0;                 // resolutions under way
    std::size_t mostRunning = 0;             // the most at one time
    std::size_t searches = 0;                // begun

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
