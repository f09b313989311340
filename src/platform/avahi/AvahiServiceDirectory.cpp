// SPDX-License-Identifier: Apache-2.0
#include "platform/avahi/AvahiServiceDirectory.h"

#include "platform/Log.h"
#include "platform/avahi/AvahiEventPoll.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace torka::platform {

namespace {

constexpr std::size_t maximumServices = 2000; // per search
// After an answer without an IPv4 address, a resolution waits this long for one.
constexpr EventTimerInterval addressGrace{1.0};

std::string withoutDot(std::string text) {
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

HostAddress hostAddress(const AvahiAddress& address) {
    HostAddress host;
    if (address.proto == AVAHI_PROTO_INET) {
        host.family = addressFamilyIPv4;
        std::memcpy(host.bytes.data(), &address.data.ipv4.address, 4);
    } else if (address.proto == AVAHI_PROTO_INET6) {
        host.family = avahi_proto_to_af(AVAHI_PROTO_INET6);
        std::memcpy(host.bytes.data(), address.data.ipv6.address, host.bytes.size());
    }
    return host;
}

} // namespace

// The connection's interface to a search or resolution.
class AvahiServiceDirectory::Activity : public NetServiceActivity {
public:
    explicit Activity(Connection& owner);
    ~Activity() override;

    // Sends the request to the daemon. False, with the reason, on failure.
    virtual bool Begin(AvahiClient* client, std::string& reason) = 0;
    // Frees the client's objects of this activity before the client itself is freed.
    virtual void Release() = 0;
    // Notifies the delegate, which may destroy the activity.
    virtual void Fail(const std::string& reason) = 0;

protected:
    Connection& connection;
};

class AvahiServiceDirectory::Connection {
public:
    explicit Connection(EventLoop& eventLoop)
        : loop(eventLoop)
        , poll(eventLoop) {}
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection() { Close(); }

    // Begins the activity from the loop, so that the call that creates it never notifies the delegate.
    void Begin(Activity& activity) {
        activities.push_back(&activity);
        unbegun.push_back(&activity);
        if (!next) {
            Defer();
        }
    }
    void Forget(Activity& activity) {
        std::erase(activities, &activity);
        std::erase(unbegun, &activity);
    }

    EventLoop& loop;

private:
    void Defer() {
        InstallEventLoopTimer(
            &loop, EventTimerInterval(0), kEventDurationForever,
            [this](const EventLoopTimerRef&) {
                next.reset();
                Proceed();
            },
            next);
    }

    bool Open(std::string& reason) {
        if (client == nullptr) {
            int error = 0;
            client = avahi_client_new(poll.Api(), AvahiClientFlags{}, StateChanged, this, &error);
            if (client == nullptr) {
                reason = std::string("Avahi: ") + avahi_strerror(error);
            }
        }
        return client != nullptr;
    }

    void Close() {
        if (client != nullptr) {
            for (Activity* activity : activities) {
                activity->Release();
            }
            avahi_client_free(std::exchange(client, nullptr));
        }
    }

    void Proceed() {
        if (std::exchange(isBroken, false)) {
            Close();
            TellAll(std::vector<Activity*>(activities), "Avahi: the daemon has gone");
            return;
        }
        std::string reason;
        if (!Open(reason)) {
            TellAll(std::exchange(unbegun, {}), reason);
            return;
        }
        while (!unbegun.empty()) {
            Activity* activity = unbegun.front();
            unbegun.erase(unbegun.begin());
            if (!activity->Begin(client, reason)) {
                activity->Fail(reason);
            }
        }
    }

    // The delegates may destroy any activity, so that `told` must be a copy of the list.
    void TellAll(const std::vector<Activity*>& told, const std::string& reason) {
        myNSLogC("%s", reason.c_str());
        unbegun.clear();
        for (Activity* activity : told) {
            if (std::find(activities.begin(), activities.end(), activity) != activities.end()) {
                activity->Fail(reason);
            }
        }
    }

    // Avahi calls this, even while it creates the client.
    static void StateChanged(AvahiClient* /*client*/, AvahiClientState state, void* self) {
        auto* connection = static_cast<Connection*>(self);
        if (state == AVAHI_CLIENT_FAILURE) {
            connection->isBroken = true; // the client must not be freed in this callback
            connection->Defer();
        }
    }

    AvahiEventPoll poll;
    AvahiClient* client = nullptr;
    bool isBroken = false;
    EventLoopTimerRef next;
    std::vector<Activity*> activities; // in the order of creation
    std::vector<Activity*> unbegun;
};

AvahiServiceDirectory::Activity::Activity(Connection& owner)
    : connection(owner) {
    connection.Begin(*this);
}

AvahiServiceDirectory::Activity::~Activity() { connection.Forget(*this); }

class AvahiServiceDirectory::Search final : public Activity {
public:
    Search(Connection& owner, std::string wantedType, std::string wantedDomain,
           ServiceBrowserDelegate& listener)
        : Activity(owner)
        , type(std::move(wantedType))
        , domain(std::move(wantedDomain))
        , delegate(listener) {}
    ~Search() override { Search::Release(); }

    bool Begin(AvahiClient* client, std::string& reason) override {
        browser =
            avahi_service_browser_new(client, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, withoutDot(type).c_str(),
                                      withoutDot(domain).c_str(), AvahiLookupFlags{}, Happened, this);
        if (browser == nullptr) {
            reason = std::string("Avahi: ") + avahi_strerror(avahi_client_errno(client));
        }
        return browser != nullptr;
    }
    void Release() override {
        if (browser != nullptr) {
            avahi_service_browser_free(std::exchange(browser, nullptr));
        }
    }
    void Fail(const std::string& reason) override { delegate.didNotSearch(reason); }

private:
    static void Happened(AvahiServiceBrowser* browser, AvahiIfIndex /*interface*/, AvahiProtocol /*protocol*/,
                         AvahiBrowserEvent event, const char* name, const char* /*type*/,
                         const char* /*domain*/, AvahiLookupResultFlags /*flags*/, void* self) {
        auto* search = static_cast<Search*>(self);
        if (event == AVAHI_BROWSER_NEW && name != nullptr) {
            search->Appeared(name);
        } else if (event == AVAHI_BROWSER_REMOVE && name != nullptr) {
            search->Vanished(name);
        } else if (event == AVAHI_BROWSER_FAILURE) {
            const int error = avahi_client_errno(avahi_service_browser_get_client(browser));
            search->Fail(std::string("Avahi: ") + avahi_strerror(error));
        }
    }

    // Avahi announces a service once for each interface and address family.
    void Appeared(const std::string& name) {
        const auto place = times.find(name);
        if (place != times.end()) {
            ++place->second;
        } else if (times.size() < maximumServices) {
            times.emplace(name, 1);
            delegate.didFindService({name, type, domain});
        }
    }
    void Vanished(const std::string& name) {
        const auto place = times.find(name);
        if (place != times.end() && --place->second == 0) {
            times.erase(place);
            delegate.didRemoveService({name, type, domain});
        }
    }

    const std::string type;
    const std::string domain;
    ServiceBrowserDelegate& delegate;
    AvahiServiceBrowser* browser = nullptr;
    std::map<std::string, std::size_t> times; // number of announcements by name
};

// Asks for both address families at the same time.
class AvahiServiceDirectory::Resolution final : public Activity {
public:
    Resolution(Connection& owner, NetService which, std::chrono::milliseconds timeout,
               ServiceResolutionDelegate& listener)
        : Activity(owner)
        , service(std::move(which))
        , delegate(listener) {
        EndAfter(timeout, end);
    }
    ~Resolution() override { Resolution::Release(); }

    bool Begin(AvahiClient* client, std::string& reason) override {
        for (const AvahiProtocol family : {AVAHI_PROTO_INET, AVAHI_PROTO_INET6}) {
            AvahiServiceResolver* resolver = avahi_service_resolver_new(
                client, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, service.name.c_str(),
                withoutDot(service.type).c_str(), withoutDot(service.domain).c_str(), family,
                AVAHI_LOOKUP_NO_TXT, Happened, this);
            if (resolver != nullptr) {
                resolvers.push_back(resolver);
            } else {
                reason = std::string("Avahi: ") + avahi_strerror(avahi_client_errno(client));
            }
        }
        return !resolvers.empty();
    }
    void Release() override {
        for (AvahiServiceResolver* resolver : std::exchange(resolvers, {})) {
            avahi_service_resolver_free(resolver);
        }
    }
    // Ends the resolution: reports the answer received so far, if any, else the failure.
    void Fail(const std::string& reason) override {
        Release();
        end.reset();
        grace.reset();
        const NetService which = service;
        if (const auto other = std::exchange(answer, std::nullopt)) {
            delegate.netServiceDidResolveAddress(which, *other);
        } else {
            delegate.didNotResolve(which, reason);
        }
    }

private:
    static void Happened(AvahiServiceResolver* resolver, AvahiIfIndex /*interface*/,
                         AvahiProtocol /*protocol*/, AvahiResolverEvent event, const char* /*name*/,
                         const char* /*type*/, const char* /*domain*/, const char* hostName,
                         const AvahiAddress* address, std::uint16_t port, AvahiStringList* /*txt*/,
                         AvahiLookupResultFlags /*flags*/, void* self) {
        auto* resolution = static_cast<Resolution*>(self);
        if (event == AVAHI_RESOLVER_FOUND && hostName != nullptr && address != nullptr) {
            resolution->Answered({hostName, port, {hostAddress(*address)}});
        } else {
            resolution->GaveUp(resolver);
        }
    }

    void Answered(ResolvedService resolved) {
        const bool isIPv4 = resolved.addresses.front().family == addressFamilyIPv4;
        answer = std::move(resolved);
        if (isIPv4 || resolvers.size() == 1) {
            Fail({}); // reports the answer
        } else {
            EndAfter(addressGrace, grace);
        }
    }

    void GaveUp(AvahiServiceResolver* resolver) {
        const auto* client = avahi_service_resolver_get_client(resolver);
        const int error =
            client != nullptr ? avahi_client_errno(avahi_service_resolver_get_client(resolver)) : 0;
        std::erase(resolvers, resolver);
        avahi_service_resolver_free(resolver);
        if (resolvers.empty() || answer) {
            Fail(std::string("Avahi: ") + avahi_strerror(error));
        }
    }

    void EndAfter(EventTimerInterval time, EventLoopTimerRef& timer) {
        InstallEventLoopTimer(
            &connection.loop, time, kEventDurationForever,
            [this](const EventLoopTimerRef&) { Fail("timed out"); }, timer);
    }

    const NetService service;
    ServiceResolutionDelegate& delegate;
    std::vector<AvahiServiceResolver*> resolvers;
    std::optional<ResolvedService> answer; // an answer without an IPv4 address
    EventLoopTimerRef end;
    EventLoopTimerRef grace;
};

AvahiServiceDirectory::AvahiServiceDirectory(EventLoop& eventLoop)
    : connection(std::make_unique<Connection>(eventLoop)) {}

AvahiServiceDirectory::~AvahiServiceDirectory() = default;

std::unique_ptr<NetServiceActivity> AvahiServiceDirectory::Browse(const std::string& type,
                                                                  const std::string& domain,
                                                                  ServiceBrowserDelegate& delegate) {
    return std::make_unique<Search>(*connection, type, domain, delegate);
}

std::unique_ptr<NetServiceActivity> AvahiServiceDirectory::Resolve(const NetService& service,
                                                                   std::chrono::milliseconds timeout,
                                                                   ServiceResolutionDelegate& delegate) {
    return std::make_unique<Resolution>(*connection, service, timeout, delegate);
}

} // namespace torka::platform
