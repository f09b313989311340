#include "platform/NetServices.h"

#include "platform/Log.h"

#include <arpa/inet.h>

namespace torka::platform {

namespace {

std::unique_ptr<NetServices>& netServicesSlot() {
    static std::unique_ptr<NetServices> slot;
    return slot;
}

std::unique_ptr<ServiceDirectory>& serviceDirectorySlot() {
    static std::unique_ptr<ServiceDirectory> slot;
    return slot;
}

} // namespace

static_assert(addressFamilyIPv4 == AF_INET);

IcmpSocket::~IcmpSocket() = default;
ServiceBrowserDelegate::~ServiceBrowserDelegate() = default;
ServiceResolutionDelegate::~ServiceResolutionDelegate() = default;
NetServiceActivity::~NetServiceActivity() = default;
ServiceDirectory::~ServiceDirectory() = default;
NetServices::~NetServices() = default;

bool parseIPv4Address(const std::string& text, HostAddress& address) {
    address = {};
    // A NUL inside would let the rest pass unread.
    if (text.find('\0') != std::string::npos || inet_pton(AF_INET, text.c_str(), address.bytes.data()) != 1) {
        return false;
    }
    address.family = addressFamilyIPv4;
    return true;
}

std::string addressText(const HostAddress& address) {
    if (address.family != AF_INET && address.family != AF_INET6) {
        return {};
    }
    std::array<char, INET6_ADDRSTRLEN> text{};
    inet_ntop(address.family, address.bytes.data(), text.data(), text.size());
    return text.data();
}

NetServices& netServices() {
    TORKA_ASSERT(netServicesSlot() != nullptr, "platform::setNetServices was not called");
    return *netServicesSlot();
}

void setNetServices(std::unique_ptr<NetServices> newServices) { netServicesSlot() = std::move(newServices); }

bool hasNetServices() { return netServicesSlot() != nullptr; }

ServiceDirectory* serviceDirectory() { return serviceDirectorySlot().get(); }

void setServiceDirectory(std::unique_ptr<ServiceDirectory> directory) {
    serviceDirectorySlot() = std::move(directory);
}

} // namespace torka::platform
