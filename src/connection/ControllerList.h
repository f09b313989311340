#pragma once

#include "connection/ServiceTypes.h"
#include "platform/CoreFoundation.h"
#include "platform/NetServices.h"

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// The controllers that the local net announces, one entry each, however many services each has.

namespace torka {

// One line of plain text: control characters, line and paragraph separators and marks that turn the direction
// of writing become U+FFFD; cut after 255 units.
CFStringRef plainServiceName(std::string_view utf8);

struct FoundController {
    CFStringRef name;      // as plain text; those of several services on one host are separated by ", "
    CFStringRef addresses; // dotted IPv4 addresses separated by ", ", else the host's name, "" while unknown
    CFStringRef address;   // the first of these, to be used; "" while unknown
    std::optional<std::int64_t> number; // the first IPv4 address as one
    NetService service;                 // the one to be resolved
    std::vector<std::string> aliases;   // the names of all its services, as they came
};

class ControllerListObserver {
public:
    ControllerListObserver() = default;
    ControllerListObserver(const ControllerListObserver&) = delete;
    ControllerListObserver& operator=(const ControllerListObserver&) = delete;
    virtual ~ControllerListObserver();
    virtual void listDidChange() = 0;
};

// Browses for the four service types as long as it lives and resolves what it finds, a few at a time.
// Services of one name are one controller; so are services whose hosts turn out to be the same.
class ControllerList final : private ServiceBrowserDelegate, private ServiceResolutionDelegate {
public:
    static constexpr std::size_t mostControllers = 1000; // later ones are left out
    static constexpr std::size_t mostResolutions = 4;    // at a time
    static constexpr std::chrono::milliseconds resolveTimeout{5000};

    // Both outlive it. The observer is never told from within the constructor.
    ControllerList(ServiceDirectory& services, ControllerListObserver& listObserver);
    ~ControllerList() override;

    // In the order in which they were found.
    std::vector<FoundController> Controllers() const;
    // An answer that somebody else got for one of the services.
    void Learn(const NetService& service, const ResolvedService& resolved);
    bool LeftOut() const { return leftOut; } // there are more than mostControllers
    // Why nothing is searched for, "" while at least one search is under way.
    const std::string& Failure() const { return failure; }

private:
    struct Entry; // services of one name
    struct Resolution {
        NetService service;
        std::unique_ptr<NetServiceActivity> activity;
    };

    Entry* Find(const NetService& service);
    void Await(Entry& entry);
    void ResolveNext();
    void EndResolution(const NetService& service);

    void didFindService(const NetService& service) override;
    void didRemoveService(const NetService& service) override;
    void didNotSearch(const std::string& reason) override;
    void netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) override;
    void didNotResolve(const NetService& service, const std::string& reason) override;

    ServiceDirectory& directory;
    ControllerListObserver& observer;
    std::vector<std::unique_ptr<NetServiceActivity>> searches;
    std::size_t failedSearches = 0;
    std::string failure;
    bool leftOut = false;
    std::map<std::uint64_t, std::unique_ptr<Entry>> entries; // by the order in which they were found
    std::unordered_map<std::string, std::uint64_t> orders;   // by name and domain, ASCII letter case folded
    std::uint64_t nextOrder = 0;
    std::deque<NetService> waiting; // still to be resolved; what has gone meanwhile is passed over
    std::vector<Resolution> resolutions;
};

} // namespace torka
