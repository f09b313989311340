// SPDX-License-Identifier: Apache-2.0
#include "platform/NetServices.h"

#include "platform/Log.h"

#include <algorithm>
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
    // inet_pton would ignore the text behind a NUL.
    if (text.find('\0') != std::string::npos || inet_pton(AF_INET, text.c_str(), address.bytes.data()) != 1) {
        return false;
    }
    address.family = addressFamilyIPv4;
    return true;
}

bool parseNumericAddress(std::string_view text, HostAddress& address) {
    constexpr std::array<std::uint8_t, 12> mappedPrefix{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
    if (text.starts_with('[') && text.ends_with(']')) {
        text = text.substr(1, text.size() - 2);
    }
    const std::string plain(text);
    if (parseIPv4Address(plain, address)) {
        return true;
    }
    if (plain.find('\0') != std::string::npos ||
        inet_pton(AF_INET6, plain.c_str(), address.bytes.data()) != 1) {
        address = {};
        return false;
    }
    address.family = AF_INET6;
    if (std::equal(mappedPrefix.begin(), mappedPrefix.end(), address.bytes.begin())) {
        std::array<std::uint8_t, 16> inner{};
        std::copy(address.bytes.begin() + mappedPrefix.size(), address.bytes.end(), inner.begin());
        address = {addressFamilyIPv4, inner};
    }
    return true;
}

bool isHostName(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '.';
    });
}

bool isSameAddress(std::string_view one, std::string_view other) {
    HostAddress first;
    HostAddress second;
    const bool isNumeric = parseNumericAddress(one, first);
    if (parseNumericAddress(other, second) != isNumeric) {
        return false;
    }
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return isNumeric ? first == second
                     : std::ranges::equal(one, other, [&](char a, char b) { return lower(a) == lower(b); });
}

std::vector<HostAddress> NetServices::ResolveHostAddresses(const std::string& name,
                                                           std::chrono::milliseconds /*limit*/) {
    HostAddress address;
    return ResolveHost(name, address) ? std::vector<HostAddress>{address} : std::vector<HostAddress>();
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
