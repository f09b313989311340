// SPDX-License-Identifier: Apache-2.0
#include "connection/AddressText.h"

#include <algorithm>

namespace torka {

bool isAddressCharacter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'.';
}

bool isAddress(const CFStringRef& text) {
    return CFStringGetLength(text) > 0 && std::ranges::all_of(text->units, isAddressCharacter);
}

AddressProblem addressProblem(const CFStringRef& text) {
    if (CFStringGetLength(text) == 0) {
        return {"IP_NOT_CONFIG", "The IP Address or DNS Name must be assigned."};
    }
    if (!isAddress(text)) {
        return {"INVALID_IP_ADDRESS", "You have entered an invalid IP Address or DNS Name"};
    }
    return {};
}

} // namespace torka
