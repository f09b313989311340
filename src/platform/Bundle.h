// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/PrintDialogExtension.h"
#include "platform/Result.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// Plug-in bundles. A bundle is a folder with a plug-in's information, its texts in several languages, its
// interface file and its shared object.
//
//     NAME.bundle/Contents/Info.plist              information keys, see docs/bundle.md
//     NAME.bundle/Contents/Linux/FILE              the shared object that "CFBundleExecutable" names
//     NAME.bundle/Contents/Resources/FILE          resources
//     NAME.bundle/Contents/Resources/LANG.lproj/TABLE.strings
//
// A host opens a bundle with an adapter (posix/PosixBundle.h). Host and plug-in use only the interfaces in
// this folder's headers to call each other: each holds its own copy of everything else, including the chosen
// adapters.

namespace torka::platform {

class Bundle {
public:
    Bundle() = default;
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;
    virtual ~Bundle();
    // "CFBundleIdentifier"; never null.
    virtual CFStringRef Identifier() const = 0;
    // A value of Info.plist; null when absent.
    virtual CFTypeRef InfoValue(std::u16string_view key) const = 0;
    // The absolute path of the bundle's folder.
    virtual std::filesystem::path Path() const = 0;
    // The path of a resource such as "TorkaFeaturesPDE.ui"; empty when the bundle lacks it.
    virtual std::filesystem::path ResourcePath(std::string_view fileName) const = 0;
    // The key's text from the table in the person's language, else from that in the development language.
    // When both lack the key, the default, or the key when the default is null.
    virtual CFStringRef LocalizedString(const CFStringRef& key, const CFStringRef& defaultText,
                                        std::string_view table) const = 0;
    // Loads the shared object and creates an object of the class that "NSPrincipalClass" names. The shared
    // object stays loaded until the process ends. Never null on success; a fault is logged too.
    virtual Result<std::unique_ptr<PDEPlugIn>> InstantiatePrincipalClass() const = 0;
};

// The bundles that this process (or this plug-in) has registered. Null for an unknown identifier.
BundleRef bundleWithIdentifier(std::string_view identifier);
// Replaces an earlier bundle with the same identifier.
void registerBundle(const BundleRef& bundle);

// The only function that a plug-in's shared object exports. It creates an object of the class with the
// registered name, which the host deletes. Null for another name or another version of the interfaces.
//
// Increase the version with every change of a class in this folder's headers that host and plug-in share.
inline constexpr const char* bundleEntryName = "torkaBundleInstantiate";
inline constexpr int bundleInterfaceVersion = 1;
using BundleEntry = PDEPlugIn* (*)(const char* className, int interfaceVersion);

// For the tests; no caller here
void forgetBundle(std::string_view identifier);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
