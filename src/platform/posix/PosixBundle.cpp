// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixBundle.h"

#include "platform/Log.h"
#include "platform/posix/StringTables.h"

#include <algorithm>
#include <dlfcn.h>
#include <system_error>

namespace torka::platform {

namespace {

namespace fs = std::filesystem;

std::string report(std::string problem) {
    std::replace_if(
        problem.begin(), problem.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    myNSLogC("%s", problem.c_str());
    return problem;
}

class PosixBundle final : public Bundle {
public:
    PosixBundle(fs::path bundleFolder, CFDictionaryRef information, CFStringRef bundleIdentifier)
        : folder(std::move(bundleFolder))
        , info(std::move(information))
        , identifier(std::move(bundleIdentifier))
        , tables(Resources(), InfoText(u"CFBundleDevelopmentRegion")) {}

    CFStringRef Identifier() const override { return identifier; }
    CFTypeRef InfoValue(std::u16string_view key) const override { return CFDictionaryGetValue(info, key); }
    fs::path Path() const override { return folder; }

    fs::path ResourcePath(std::string_view fileName) const override {
        const fs::path path = Resources() / fs::path(fileName);
        std::error_code ignored;
        return isPlainFileName(fileName) && fs::is_regular_file(path, ignored) ? path : fs::path();
    }

    CFStringRef LocalizedString(const CFStringRef& key, const CFStringRef& defaultText,
                                std::string_view table) const override {
        if (auto text = tables.Find(key, table)) {
            return text;
        }
        return defaultText ? defaultText : key;
    }

    Result<std::unique_ptr<PDEPlugIn>> InstantiatePrincipalClass() const override;

private:
    fs::path Resources() const { return folder / "Contents" / "Resources"; }
    std::string InfoText(std::u16string_view key) const { return utf8Text(cfCast<CFString>(InfoValue(key))); }

    fs::path folder;
    CFDictionaryRef info;
    CFStringRef identifier;
    StringTables tables;
};

Result<std::unique_ptr<PDEPlugIn>> PosixBundle::InstantiatePrincipalClass() const {
    const std::string file = InfoText(u"CFBundleExecutable");
    const std::string className = InfoText(u"NSPrincipalClass");
    if (!isPlainFileName(file) || className.empty()) {
        return Fault{
            report("The bundle " + folder.string() + " names no shared object or no principal class.")};
    }
    const fs::path path = folder / "Contents" / "Linux" / file;
    // The code must stay loaded, because objects and views of the plug-in may live until the process ends.
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (library == nullptr) {
        const char* reason = dlerror();
        return Fault{report("The plug-in cannot be loaded: " + (reason != nullptr ? reason : path.string()))};
    }
    void* symbol = dlsym(library, bundleEntryName);
    std::unique_ptr<PDEPlugIn> plugIn;
    if (symbol != nullptr) {
        plugIn.reset(reinterpret_cast<BundleEntry>(symbol)(className.c_str(), bundleInterfaceVersion));
    }
    dlclose(library);
    if (!plugIn) {
        return Fault{report("The plug-in " + path.string() + " has no class " + className +
                            " for this host's interfaces (version " + std::to_string(bundleInterfaceVersion) +
                            ").")};
    }
    return plugIn;
}

} // namespace

Result<BundleRef> openBundle(const fs::path& folder) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(folder, failure).lexically_normal();
    const fs::path path = absolute.has_filename() ? absolute : absolute.parent_path();
    const fs::path list = path / "Contents" / "Info.plist";
    const Result<CFDictionaryRef> info = readDictionaryFile(list);
    if (!info) {
        return Fault{report("The bundle's " + list.string() + " cannot be used: " + info.Why().text)};
    }
    const auto identifier = cfCast<CFString>(CFDictionaryGetValue(*info, u"CFBundleIdentifier"));
    if (CFStringGetLength(identifier) == 0) {
        return Fault{
            report("The bundle's " + list.string() + " cannot be used: it has no CFBundleIdentifier")};
    }
    return BundleRef(std::make_shared<PosixBundle>(path, *info, identifier));
}

fs::path folderOfObjectAt(const void* address) {
    Dl_info place{};
    if (dladdr(address, &place) == 0 || place.dli_fname == nullptr) {
        return {};
    }
    std::error_code failure;
    const fs::path object = fs::canonical(place.dli_fname, failure);
    return failure ? fs::path() : object.parent_path();
}

fs::path bundleFolderAround(const void* address) {
    const fs::path folder = folderOfObjectAt(address); // NAME.bundle/Contents/Linux
    return folder.filename() == "Linux" ? folder.parent_path().parent_path() : fs::path();
}

} // namespace torka::platform
