// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/NetServices.h"

#include <functional>
#include <memory>
#include <string>

namespace torka {

// Resolves a service, named by a queue's device URI, to a numeric IPv4 address.
//
// Resolves for two seconds at most, while the object lives. Uses platform::serviceDirectory(). Without a
// directory the address is "NO" from the start, and `whenDone` is not called.
class BonjourIPDiscovery final : private ServiceResolutionDelegate {
public:
    // The instance name is the URI's host without "._printer._tcp.local." at its end. When the host does not
    // end so, every "._ipp._tcp.local." is removed from it. Both kinds of name are resolved under
    // "_printer._tcp.". `whenDone` is called once, after printAddress() has its value and never within this
    // call. It may destroy the object.
    static std::unique_ptr<BonjourIPDiscovery> initWithPrinterBonjourURL(const CFURLRef& url,
                                                                         std::function<void()> whenDone = {});
    ~BonjourIPDiscovery() override;

    // "" before the service is resolved, and when its first address is not IPv4. "NO" when it cannot be
    // resolved.
    const std::string& printAddress() const { return address; }
    bool didResolve() const { return resolved; }

    // For the tests; no caller here
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
