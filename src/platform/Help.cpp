// SPDX-License-Identifier: Apache-2.0
#include "platform/Help.h"

namespace torka::platform {

OSStatus AHGotoPage(const CFStringRef& /*book*/, const CFStringRef& /*page*/, const CFStringRef& /*anchor*/) {
    return fnfErr;
}

} // namespace torka::platform
