// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Bundle.h"

#include <string_view>

// The bundle of the plug-in, and the names that are made from its identifier.

namespace torka {

// The suffix of every class name that the plug-in registers. It keeps plug-ins of other makers and versions
// in one process apart.
inline constexpr std::string_view registeredNameSuffix = "5D2E7A419C3B4F608E17B04A6C2D9F85";

CFStringRef GetBundleID();
// Null when no bundle of that identifier is known.
BundleRef GetBundleRef();
// The name of the print setting that holds the ticket of a job.
CFStringRef CreatePostscriptDataFileKey();
// The URL of the "Contents" folder of the bundle; null when no bundle of that identifier is known. The bundle
// that is found first is kept for the process.
CFURLRef CreatePDEContentsURL(const CFStringRef& bundleID);

// Given interface; no caller here
// The four-character creator code "ZAN2". Always noErr.
OSStatus GetCreatorID(std::uint32_t& creator);
CFStringRef CreateNIBFileName(); // "PDEProject"
// The bundle's identifier with the suffix; null or "" for the identifier alone.
CFStringRef CreateClientIdentifier(const CFStringRef& suffix);

} // namespace torka
