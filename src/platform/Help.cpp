// SPDX-License-Identifier: Apache-2.0
#include "platform/Help.h"

#include <utility>

namespace torka::platform {

namespace {

HelpViewer& chosenViewer() {
    static HelpViewer viewer;
    return viewer;
}

} // namespace

OSStatus AHGotoPage(const CFStringRef& book, const CFStringRef& page, const CFStringRef& anchor) {
    return chosenViewer() ? chosenViewer()(book, page, anchor) : fnfErr;
}

void setHelpViewer(HelpViewer viewer) { chosenViewer() = std::move(viewer); }

} // namespace torka::platform
