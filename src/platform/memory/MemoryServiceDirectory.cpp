// SPDX-License-Identifier: Apache-2.0
#include "platform/memory/MemoryServiceDirectory.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace torka::platform {

namespace {

std::string_view withoutDot(std::string_view text) {
    return text.ends_with('.') ? text.substr(0, text.size() - 1) : text;
}

bool isSameService(const NetService& left, const NetService& right) {
    return left.name == right.name && withoutDot(left.type) == withoutDot(right.type) &&
           withoutDot(left.domain) == withoutDot(right.domain);
}

} // namespace

class MemoryServiceDirectory::Search final : public NetServiceActivity {
public:
    Search(MemoryServiceDirectory& owner, std::string wantedType, ServiceBrowserDelegate& listener)
        : net(owner)
        , type(std::move(wantedType))
        , delegate(listener) {
        net.live.push_back(this);
        InstallEventLoopTimer(
            GetMainEventLoop(), EventTimerInterval(0), kEventDurationForever,
            [this, reason = net.failure](const EventLoopTimerRef&) { Begin(reason); }, start);
    }
    ~Search() override { std::erase(net.live, this); }

    bool Wants(const NetService& service) const {
        return hasBegun && withoutDot(service.type) == withoutDot(type);
    }

    MemoryServiceDirectory& net;
    std::string type;
    ServiceBrowserDelegate& delegate;

private:
    void Begin(const std::string& reason) {
        if (!reason.empty()) {
            delegate.didNotSearch(reason);
            return;
        }
        hasBegun = true;
        const auto known = net.announced; // a copy, because the delegate may end the search
        for (const Announcement& announcement : known) {
            if (std::find(net.live.begin(), net.live.end(), this) == net.live.end()) {
                return;
            }
            if (Wants(announcement.service)) {
                delegate.didFindService(announcement.service);
            }
        }
    }

    bool hasBegun = false;
    EventLoopTimerRef start;
};

class MemoryServiceDirectory::Resolution final : public NetServiceActivity {
public:
    Resolution(MemoryServiceDirectory& owner, NetService which, std::chrono::milliseconds timeout,
               ServiceResolutionDelegate& listener)
        : net(owner)
        , service(std::move(which))
        , delegate(listener) {
        const Announcement* known = net.Find(service);
        const bool answers = known != nullptr && known->answer && net.answerTime < timeout;
        InstallEventLoopTimer(
            GetMainEventLoop(), answers ? net.answerTime : timeout, kEventDurationForever,
            [this, answers, answer = answers ? *known->answer : ResolvedService()](const EventLoopTimerRef&) {
                const NetService told = service; // a copy, because the call may destroy this object
                if (answers) {
                    delegate.netServiceDidResolveAddress(told, answer);
                } else {
                    delegate.didNotResolve(told, "timed out");
                }
            },
            end);
        net.maximumRunning = std::max(net.maximumRunning, ++net.running);
    }
    ~Resolution() override { --net.running; }

private:
    MemoryServiceDirectory& net;
    NetService service;
    ServiceResolutionDelegate& delegate;
    EventLoopTimerRef end;
};

std::unique_ptr<NetServiceActivity> MemoryServiceDirectory::Browse(const std::string& type,
                                                                   const std::string& /*domain*/,
                                                                   ServiceBrowserDelegate& delegate) {
    ++searches;
    return std::make_unique<Search>(*this, type, delegate);
}

std::unique_ptr<NetServiceActivity> MemoryServiceDirectory::Resolve(const NetService& service,
                                                                    std::chrono::milliseconds timeout,
                                                                    ServiceResolutionDelegate& delegate) {
    resolved.push_back({service, timeout});
    return std::make_unique<Resolution>(*this, service, timeout, delegate);
}

const MemoryServiceDirectory::Announcement* MemoryServiceDirectory::Find(const NetService& service) const {
    const auto place =
        std::find_if(announced.begin(), announced.end(), [&service](const Announcement& announcement) {
            return isSameService(announcement.service, service);
        });
    return place == announced.end() ? nullptr : &*place;
}

void MemoryServiceDirectory::Announce(const NetService& service, std::optional<ResolvedService> answer) {
    announced.push_back({service, std::move(answer)});
    const auto told = live;
    for (Search* search : told) {
        if (std::find(live.begin(), live.end(), search) != live.end() && search->Wants(service)) {
            search->delegate.didFindService(service);
        }
    }
}

void MemoryServiceDirectory::Withdraw(const NetService& service) {
    std::erase_if(announced, [&service](const Announcement& announcement) {
        return isSameService(announcement.service, service);
    });
    const auto told = live;
    for (Search* search : told) {
        if (std::find(live.begin(), live.end(), search) != live.end() && search->Wants(service)) {
            search->delegate.didRemoveService(service);
        }
    }
}

} // namespace torka::platform
