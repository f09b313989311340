// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <string>

namespace torka {

// A group name that the description has declared but not placed yet.
struct GroupName {
    std::string name;
    CFStringRef localName;
    bool visible = false;
};

} // namespace torka
