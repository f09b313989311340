#pragma once

#include "platform/CoreFoundation.h"
#include "platform/NetServices.h"

#include <functional>
#include <memory>
#include <string>

namespace torka {

// Turns a queue's device URI that names a service into a numeric IPv4 address.
//
// Resolves as long as it lives, two seconds at most. The directory is platform::serviceDirectory(); without
// one the address is "NO" from the start and nobody is told.
class BonjourIPDiscovery final : private ServiceResolutionDelegate {
public:
    // The instance name is the URI's host without "._printer._tcp.local." at its end, else without
    // "._ipp._tcp.local." wherever it stands. The service is looked for under "_printer._tcp." in either
    // case. `whenDone` is called once, after printAddress() has its value, never from within this call; it
    // may destroy the object.
    static std::unique_ptr<BonjourIPDiscovery> initWithPrinterBonjourURL(const CFURLRef& url,
                                                                         std::function<void()> whenDone = {});
    ~BonjourIPDiscovery() override;

    // "" until the service was resolved, and for one whose first address is not IPv4; "NO" when it could not
    // be.
    const std::string& printAddress() const { return address; }
    bool didResolve() const { return resolved; }
    const std::string& instanceName() const { return service.name; }

private:
    explicit BonjourIPDiscovery(std::string name, std::function<void()> whenDone);

    void netServiceDidResolveAddress(const NetService& which, const ResolvedService& answer) override;
    void didNotResolve(const NetService& which, const std::string& reason) override;

    NetService service;
    std::string address;
    bool resolved = false;
    std::function<void()> done;
    std::unique_ptr<NetServiceActivity> resolution;
};

} // namespace torka
