// SPDX-License-Identifier: Apache-2.0
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

// Lists the controllers that the local network announces. A controller with several services is one entry.

namespace torka {

// A name as one line of plain text. Control characters, line and paragraph separators and marks for the
// direction of writing become U+FFFD. The text is cut after 255 units.
CFStringRef plainServiceName(std::string_view utf8);

struct FoundController {
    CFStringRef name;      // plain text; ", " separates the names of several services on one host
    CFStringRef addresses; // dotted IPv4 addresses separated by ", ", else the host's name, "" while unknown
    CFStringRef address;   // the first of these addresses, for use; "" while unknown
    std::optional<std::int64_t> number; // the first IPv4 address as a number
    NetService service;                 // the service to resolve
    std::vector<std::string> aliases;   // the names of all its services, unchanged
};

class ControllerListObserver {
public:
    ControllerListObserver() = default;
    ControllerListObserver(const ControllerListObserver&) = delete;
    ControllerListObserver& operator=(const ControllerListObserver&) = delete;
    virtual ~ControllerListObserver();
    virtual void listDidChange() = 0;
};

// Browses for the four service types while it lives, and resolves the services found. Services with the same
// name belong to one controller; so do services that resolve to the same host.
class ControllerList final : private ServiceBrowserDelegate, private ServiceResolutionDelegate {
public:
    static constexpr std::size_t maximumControllers = 1000; // further ones are left out
    static constexpr std::size_t maximumResolutions = 4;    // at the same time
    static constexpr std::chrono::milliseconds resolveTimeout{5000};

    // Refers to both, which must outlive it. The constructor never calls the observer.
    ControllerList(ServiceDirectory& services, ControllerListObserver& listObserver);
    ~ControllerList() override;

    // The controllers in the order of their discovery.
    std::vector<FoundController> Controllers() const;
    // Takes over an answer that another resolution of the service received.
    void Learn(const NetService& service, const ResolvedService& resolved);
    bool LeftOut() const { return leftOut; } // more than maximumControllers were announced
    // The reason why no search is under way; "" while at least one is.
    const std::string& Failure() const { return failure; }

private:
    struct Entry; // the services of one name
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
    std::map<std::uint64_t, std::unique_ptr<Entry>> entries; // by the order of discovery
    std::unordered_map<std::string, std::uint64_t> orders;   // by name and domain, ASCII letter case folded
    std::uint64_t nextOrder = 0;
    std::deque<NetService> waiting; // to be resolved; a service that has gone since is skipped
    std::vector<Resolution> resolutions;
};

} // namespace torka
