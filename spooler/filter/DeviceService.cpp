// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/DeviceService.h"

#include "connection/ConnectionType.h"
#include "connection/ControllerList.h"
#include "platform/avahi/AvahiServiceDirectory.h"
#include "platform/posix/PosixEventLoop.h"
#include "spooler/filter/ServerMessages.h"

#include <algorithm>
#include <chrono>

namespace torka::filter {

namespace {

constexpr std::chrono::milliseconds resolveLimit(2000);

class Resolved final : public ServiceResolutionDelegate {
public:
    explicit Resolved(PosixEventLoop& eventLoop)
        : loop(eventLoop) {}
    void netServiceDidResolveAddress(const NetService& /*service*/,
                                     const ResolvedService& resolved) override {
        if (!resolved.addresses.empty()) {
            address = addressText(resolved.addresses.front());
        }
        loop.Stop();
    }
    void didNotResolve(const NetService& service, const std::string& reason) override {
        tellDebug(service.name + ": the device's service is not found: " + reason);
        loop.Stop();
    }

    std::string address;

private:
    PosixEventLoop& loop;
};

} // namespace

std::optional<NetService> serviceOfDevice(const std::string& uri) {
    if (!uri.starts_with("dnssd:") && !uri.starts_with("mdns:")) {
        return std::nullopt;
    }
    const std::string name = utf8Text(breakBonjourURLIntoMeaningFullItems(cfString(uri)));
    const auto type = std::ranges::find_if(controllerServiceTypes, [&uri](std::string_view candidate) {
        return uri.find("." + std::string(candidate)) != std::string::npos;
    });
    if (name.empty() || type == controllerServiceTypes.end()) {
        return std::nullopt;
    }
    return NetService{name, std::string(*type), std::string(localDomain)};
}

std::string addressOfService(const NetService& service) {
    PosixEventLoop loop;
    AvahiServiceDirectory directory(loop);
    Resolved resolved(loop);
    const auto activity = directory.Resolve(service, resolveLimit, resolved);
    loop.Run(resolveLimit + std::chrono::milliseconds(100));
    return resolved.address;
}

} // namespace torka::filter
