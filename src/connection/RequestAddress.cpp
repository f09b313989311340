// SPDX-License-Identifier: Apache-2.0
#include "connection/RequestAddress.h"

#include "platform/NetServices.h"
#include "platform/System.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::chrono::milliseconds lookUpLimit(2000);
constexpr std::size_t maximumAddressBytes = 64;

} // namespace

std::string numericAddressOf(const std::string& address) {
    HostAddress number;
    if (!isHostName(address) || parseNumericAddress(address, number) || !hasNetServices()) {
        return {};
    }
    const std::vector<HostAddress> found = netServices().ResolveHostAddresses(address, lookUpLimit);
    const auto dotted = std::ranges::find(found, addressFamilyIPv4, &HostAddress::family);
    return found.empty() ? std::string() : addressText(dotted == found.end() ? found.front() : *dotted);
}

std::string bonjourAddress(const BidiFilePaths& paths) {
    std::string text;
    HostAddress address;
    const std::filesystem::path place = twoWayPlace(paths.bonjourFile);
    if (place.empty() || system().ReadFile(place, maximumAddressBytes, text)) {
        return {};
    }
    text.resize(std::min(text.find_first_of("\r\n"), text.size()));
    return parseNumericAddress(text, address) ? addressText(address) : std::string();
}

} // namespace torka
