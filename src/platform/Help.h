#pragma once

#include "platform/CoreFoundation.h"

#include <functional>

// The system's help viewer.

namespace torka::platform {

// Opens a help book at a page or an anchor (null: its beginning). Without a viewer, which is chosen once at
// start, the answer is fnfErr.
inline constexpr OSStatus fnfErr = -43;
OSStatus AHGotoPage(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor);

using HelpViewer =
    std::function<OSStatus(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor)>;
void setHelpViewer(HelpViewer viewer);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
