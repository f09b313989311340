#pragma once

#include "platform/Bundle.h"

#include <string_view>

// The plug-in's own bundle and the names that are made of its identifier.

namespace torka {

// What every class that the plug-in registers carries behind its name, so that plug-ins of other makers and
// versions in the same process stay apart.
inline constexpr std::string_view registeredNameSuffix = "5D2E7A419C3B4F608E17B04A6C2D9F85";

CFStringRef GetBundleID();
// Null while no bundle of that identifier is known.
BundleRef GetBundleRef();
// The four-character creator code "ZAN2". Always noErr.
OSStatus GetCreatorID(std::uint32_t& creator);
CFStringRef CreateNIBFileName(); // "PDEProject"
// The print setting in which a job's ticket is found.
CFStringRef CreatePostscriptDataFileKey();
// The bundle's identifier with the suffix; null or "" for the identifier alone.
CFStringRef CreateClientIdentifier(const CFStringRef& suffix);
// URL of the bundle's "Contents"; null while no bundle of that identifier is known. The bundle first found is
// kept for the process.
CFURLRef CreatePDEContentsURL(const CFStringRef& bundleID);

} // namespace torka
