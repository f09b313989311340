#pragma once

#include "platform/PrintDialogExtension.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// Plug-in bundles: a folder with what is told about a plug-in, its texts in several languages, its interface
// file and its shared object.
//
//     NAME.bundle/Contents/Info.plist              information keys, see docs/bundle.md
//     NAME.bundle/Contents/Linux/FILE              the shared object that "CFBundleExecutable" names
//     NAME.bundle/Contents/Resources/FILE          resources
//     NAME.bundle/Contents/Resources/LANG.lproj/TABLE.strings
//
// A host opens a bundle with an adapter (posix/PosixBundle.h), and speaks with what it instantiates through
// the interfaces of this folder's headers only: host and plug-in each hold their own copy of everything else,
// the chosen adapters included.

namespace torka::platform {

class Bundle {
public:
    Bundle() = default;
    Bundle(const Bundle&) = delete;
    Bundle& operator=(const Bundle&) = delete;
    virtual ~Bundle();
    // "CFBundleIdentifier"; never null.
    virtual CFStringRef Identifier() const = 0;
    // A value of Info.plist; null when it is absent.
    virtual CFTypeRef InfoValue(std::u16string_view key) const = 0;
    // The folder itself, absolute.
    virtual std::filesystem::path Path() const = 0;
    // Where a resource lies, such as "TorkaFeaturesPDE.ui"; empty when there is none of that name.
    virtual std::filesystem::path ResourcePath(std::string_view fileName) const = 0;
    // The key's text in the table of the person's language, then in that of the development language; the
    // default when neither has it, and the key when the default is null.
    virtual CFStringRef LocalizedString(const CFStringRef& key, const CFStringRef& defaultText,
                                        std::string_view table) const = 0;
    // Loads the shared object, which stays loaded until the process ends, and makes an object of the class
    // that "NSPrincipalClass" names. Null with `problem` in one line, which is logged too.
    virtual std::unique_ptr<PDEPlugIn> InstantiatePrincipalClass(std::string& problem) const = 0;
};

// The bundles that this process (or this plug-in) has made known. Null for an identifier that is not known.
BundleRef bundleWithIdentifier(std::string_view identifier);
// A bundle of the same identifier takes the place of the one before.
void registerBundle(const BundleRef& bundle);
void forgetBundle(std::string_view identifier);

// What a plug-in's shared object exports, and all of it: an object of the class with the registered name, to
// be deleted by the host; null for another name or another version of the interfaces.
//
// The version grows with every change of a class in this folder's headers that crosses this border.
inline constexpr const char* bundleEntryName = "torkaBundleInstantiate";
inline constexpr int bundleInterfaceVersion = 1;
using BundleEntry = PDEPlugIn* (*)(const char* className, int interfaceVersion);

} // namespace torka::platform

namespace torka {
using namespace platform;
} // namespace torka
