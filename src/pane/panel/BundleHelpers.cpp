// SPDX-License-Identifier: Apache-2.0
#include "pane/panel/BundleHelpers.h"

#include "output/BundleIdentifier.h"

namespace torka {

CFStringRef GetBundleID() {
    static const CFStringRef identifier = cfString(bundleIdentifier);
    return identifier;
}

BundleRef GetBundleRef() { return bundleWithIdentifier(bundleIdentifier); }

OSStatus GetCreatorID(std::uint32_t& creator) {
    creator = 0x5A414E32; // 'ZAN2'
    return noErr;
}

CFStringRef CreateNIBFileName() { return cfString("PDEProject"); }

CFStringRef CreatePostscriptDataFileKey() { return cfString(ticketPathSetting); }

CFStringRef CreateClientIdentifier(const CFStringRef& suffix) {
    return cfString(std::string(bundleIdentifier) + utf8Text(suffix));
}

CFURLRef CreatePDEContentsURL(const CFStringRef& bundleID) {
    static BundleRef bundle;
    if (!bundle || !CFEqual(bundle->Identifier(), bundleID)) {
        bundle = bundleWithIdentifier(utf8Text(bundleID));
    }
    return bundle ? CFURLCreateWithFileSystemPath((bundle->Path() / "Contents").string()) : nullptr;
}

} // namespace torka
