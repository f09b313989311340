// SPDX-License-Identifier: Apache-2.0
#include "connection/BonjourIPDiscovery.h"

#include "connection/ServiceTypes.h"

#include <string>
#include <utility>

namespace torka {

namespace {

constexpr std::chrono::milliseconds addressResolveTimeout{2000};

std::string instanceNameOf(const CFURLRef& url) {
    const std::string printerDomain = serviceSuffix(printerService);
    const std::string ippDomain = serviceSuffix(ippService);
    std::string name = utf8Text(CFURLCopyHostName(url));
    if (name.ends_with(printerDomain)) {
        name.resize(name.size() - printerDomain.size());
        return name;
    }
    for (std::size_t place = name.find(ippDomain); place != std::string::npos;
         place = name.find(ippDomain, place)) {
        name.erase(place, ippDomain.size());
    }
    return name;
}

} // namespace

std::unique_ptr<BonjourIPDiscovery>
BonjourIPDiscovery::initWithPrinterBonjourURL(const CFURLRef& url, std::function<void()> whenDone) {
    return std::unique_ptr<BonjourIPDiscovery>(
        new BonjourIPDiscovery(instanceNameOf(url), std::move(whenDone)));
}

BonjourIPDiscovery::BonjourIPDiscovery(std::string name, std::function<void()> whenDone)
    : service{std::move(name), std::string(printerService) + ".", std::string(localDomain)}
    , done(std::move(whenDone)) {
    if (ServiceDirectory* directory = serviceDirectory()) {
        resolution = directory->Resolve(service, addressResolveTimeout, *this);
    } else {
        address = "NO";
    }
}

BonjourIPDiscovery::~BonjourIPDiscovery() = default;

void BonjourIPDiscovery::netServiceDidResolveAddress(const NetService& /*which*/,
                                                     const ResolvedService& answer) {
    if (!answer.addresses.empty() && answer.addresses.front().family == addressFamilyIPv4) {
        address = addressText(answer.addresses.front());
    }
    resolved = true;
    resolution.reset();
    if (const auto tell = std::move(done)) {
        tell();
    }
}

void BonjourIPDiscovery::didNotResolve(const NetService& /*which*/, const std::string& /*reason*/) {
    address = "NO";
    resolution.reset();
    if (const auto tell = std::move(done)) {
        tell();
    }
}

} // namespace torka
