// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <functional>

// The system's help viewer.

namespace torka::platform {

// Opens a help book at a page or an anchor, or at its beginning when both are null. fnfErr without a viewer.
inline constexpr OSStatus fnfErr = -43;
OSStatus AHGotoPage(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor);

using HelpViewer =
    std::function<OSStatus(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor)>;

// For the tests; no caller here
void setHelpViewer(HelpViewer viewer);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
