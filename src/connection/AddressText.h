// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <string_view>

// The rule for the address of a controller that a person types, in the pane's sheet or for the tool.

namespace torka {

// Letters, digits, "-" and ".".
bool isAddressCharacter(char16_t unit);
// Whether the text can be an IP address or a host name: it is not empty and has such characters only.
bool isAddress(const CFStringRef& text);

struct AddressProblem {
    std::string_view key; // of the text in the bundle's tables; "" for a usable address
    std::string_view english;
};
AddressProblem addressProblem(const CFStringRef& text);

} // namespace torka
