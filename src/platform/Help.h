// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

// The system's help viewer.

namespace torka::platform {

inline constexpr OSStatus fnfErr = -43;

// Opens a help book at a page or an anchor, or at its beginning when both are null. Returns fnfErr without a
// viewer: no system here has one.
OSStatus AHGotoPage(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
