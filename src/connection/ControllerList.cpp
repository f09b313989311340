// SPDX-License-Identifier: Apache-2.0
#include "connection/ControllerList.h"

#include <algorithm>
#include <utility>

namespace torka {

namespace {

constexpr std::size_t maximumNameUnits = 255;
constexpr std::size_t maximumNames = 3;     // in one row
constexpr std::size_t maximumAddresses = 8; // of one controller

// DNS ignores the case of ASCII letters when it compares names (RFC 6762, section 16).
std::string foldAscii(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c + ('a' - 'A'));
        }
    }
    return text;
}

std::string entryKey(const NetService& service) { return foldAscii(service.name + '\0' + service.domain); }

std::size_t typeIndex(std::string_view type) {
    if (type.ends_with('.')) {
        type.remove_suffix(1);
    }
    const auto place = std::find(controllerServiceTypes.begin(), controllerServiceTypes.end(), type);
    return static_cast<std::size_t>(place - controllerServiceTypes.begin());
}

bool mayBeShown(char16_t unit) {
    const bool isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0) || unit == 0xFEFF;
    const bool breaksLine = unit == 0x2028 || unit == 0x2029;
    const bool turnsText = unit == 0x200E || unit == 0x200F || unit == 0x061C ||
                           (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
    return !isControl && !breaksLine && !turnsText;
}

std::int64_t addressNumber(const HostAddress& address) {
    std::int64_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number * 256 + address.bytes[i];
    }
    return number;
}

} // namespace

CFStringRef plainServiceName(std::string_view utf8) {
    std::u16string units = cfString(utf8)->units;
    if (units.size() > maximumNameUnits) {
        // Does not cut a surrogate pair.
        const bool splitsPair = (units[maximumNameUnits] & 0xFC00) == 0xDC00;
        units.resize(splitsPair ? maximumNameUnits - 1 : maximumNameUnits);
    }
    std::replace_if(
        units.begin(), units.end(), [](char16_t unit) { return !mayBeShown(unit); }, u'\uFFFD');
    return CFStringCreateWithCharacters(units);
}

ControllerListObserver::~ControllerListObserver() = default;

struct ControllerList::Entry {
    NetService service;                                          // its type is the one to resolve
    std::array<bool, controllerServiceTypes.size()> announced{}; // by type
    enum class State { idle, waiting, resolved } state = State::idle;
    std::string hostName; // without a dot at its end
    std::vector<HostAddress> addresses;
};

ControllerList::ControllerList(ServiceDirectory& services, ControllerListObserver& listObserver)
    : directory(services)
    , observer(listObserver) {
    for (const std::string_view type : controllerServiceTypes) {
        searches.push_back(directory.Browse(std::string(type), std::string(localDomain), *this));
    }
}

ControllerList::~ControllerList() = default;

ControllerList::Entry* ControllerList::Find(const NetService& service) {
    const auto order = orders.find(entryKey(service));
    return order == orders.end() ? nullptr : entries.at(order->second).get();
}

std::vector<FoundController> ControllerList::Controllers() const {
    std::vector<FoundController> controllers;
    std::unordered_map<std::string, std::size_t> places; // by host
    for (const auto& [order, entry] : entries) {
        if (!entry->hostName.empty()) {
            const auto [place, isNew] = places.emplace(foldAscii(entry->hostName), controllers.size());
            if (!isNew) {
                FoundController& first = controllers[place->second];
                first.aliases.push_back(entry->service.name);
                if (first.aliases.size() <= maximumNames) {
                    first.name = CFStringCreateWithCharacters(first.name->units + u", " +
                                                              plainServiceName(entry->service.name)->units);
                } else if (first.aliases.size() == maximumNames + 1) {
                    first.name = CFStringCreateWithCharacters(first.name->units + u", …");
                }
                continue;
            }
        }
        FoundController& controller = controllers.emplace_back();
        controller.service = entry->service;
        controller.aliases = {entry->service.name};
        controller.name = plainServiceName(entry->service.name);
        std::string all;
        for (const HostAddress& address : entry->addresses) {
            all += (all.empty() ? "" : ", ") + addressText(address);
        }
        if (!entry->addresses.empty()) {
            controller.number = addressNumber(entry->addresses.front());
            controller.address = cfString(addressText(entry->addresses.front()));
            controller.addresses = cfString(all);
        } else {
            controller.address = cfString(isHostName(entry->hostName) ? entry->hostName : "");
            controller.addresses = controller.address;
        }
    }
    return controllers;
}

void ControllerList::Learn(const NetService& service, const ResolvedService& resolved) {
    Entry* entry = Find(service);
    if (entry == nullptr) {
        return;
    }
    entry->state = Entry::State::resolved;
    entry->hostName = resolved.hostName;
    while (entry->hostName.ends_with('.')) {
        entry->hostName.pop_back();
    }
    entry->addresses.clear();
    for (const HostAddress& address : resolved.addresses) {
        const bool isKnown = std::any_of(
            entry->addresses.begin(), entry->addresses.end(),
            [&address](const HostAddress& known) { return addressNumber(known) == addressNumber(address); });
        if (address.family == addressFamilyIPv4 && !isKnown && entry->addresses.size() < maximumAddresses) {
            entry->addresses.push_back(address);
        }
    }
    observer.listDidChange();
}

void ControllerList::Await(Entry& entry) {
    if (entry.state == Entry::State::idle) {
        entry.state = Entry::State::waiting;
        waiting.push_back(entry.service);
        ResolveNext();
    }
}

void ControllerList::ResolveNext() {
    while (resolutions.size() < maximumResolutions && !waiting.empty()) {
        const NetService service = std::move(waiting.front());
        waiting.pop_front();
        const Entry* entry = Find(service);
        if (entry != nullptr && entry->state == Entry::State::waiting) {
            resolutions.push_back({service, directory.Resolve(service, resolveTimeout, *this)});
        }
    }
}

void ControllerList::EndResolution(const NetService& service) {
    std::erase_if(resolutions,
                  [&service](const Resolution& resolution) { return resolution.service == service; });
    ResolveNext();
}

void ControllerList::didFindService(const NetService& service) {
    const std::size_t type = typeIndex(service.type);
    if (type == controllerServiceTypes.size() || service.name.empty()) {
        return;
    }
    Entry* entry = Find(service);
    if (entry == nullptr) {
        if (entries.size() >= maximumControllers) {
            leftOut = true;
            observer.listDidChange();
            return;
        }
        orders.emplace(entryKey(service), nextOrder);
        entry = entries.emplace(nextOrder++, std::make_unique<Entry>()).first->second.get();
        entry->service = service;
    }
    const bool isNews = !std::exchange(entry->announced[type], true);
    if (isNews && entry->state == Entry::State::idle) {
        entry->service.type = service.type; // a name that did not resolve as another type may as this one
        Await(*entry);
    }
    observer.listDidChange();
}

void ControllerList::didRemoveService(const NetService& service) {
    const auto order = orders.find(entryKey(service));
    const std::size_t type = typeIndex(service.type);
    if (order == orders.end() || type == controllerServiceTypes.size()) {
        return;
    }
    Entry& entry = *entries.at(order->second);
    entry.announced[type] = false;
    const auto other = std::find(entry.announced.begin(), entry.announced.end(), true);
    if (other == entry.announced.end()) {
        const NetService gone = entry.service;
        entries.erase(order->second);
        orders.erase(order);
        EndResolution(gone);
    } else if (typeIndex(entry.service.type) == type) {
        const auto index = static_cast<std::size_t>(other - entry.announced.begin());
        entry.service.type = controllerServiceTypes[index];
    }
    observer.listDidChange();
}

void ControllerList::didNotSearch(const std::string& reason) {
    ++failedSearches;
    if (failedSearches >= controllerServiceTypes.size()) {
        failure = reason;
        observer.listDidChange();
    }
}

void ControllerList::netServiceDidResolveAddress(const NetService& service, const ResolvedService& resolved) {
    Learn(service, resolved);
    EndResolution(service);
}

void ControllerList::didNotResolve(const NetService& service, const std::string& /*reason*/) {
    Entry* entry = Find(service);
    if (entry != nullptr && entry->state == Entry::State::waiting) {
        entry->state = Entry::State::idle;
        if (entry->service.type != service.type) { // the type has changed during the resolution
            Await(*entry);
        }
    }
    EndResolution(service);
}

} // namespace torka
