// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/PosixBundle.h"

#include "platform/Log.h"
#include "platform/PropertyList.h"
#include "platform/System.h"
#include "platform/posix/LanguageFolders.h"

#include <algorithm>
#include <dlfcn.h>
#include <map>
#include <system_error>
#include <vector>

namespace torka::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumListBytes = std::size_t{4} * 1024 * 1024;

// Whether the name is one component of a path that stays in its folder. Refuses hidden files.
bool isPlainFileName(std::string_view name) {
    return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

std::string report(std::string problem) {
    std::replace_if(
        problem.begin(), problem.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
    myNSLogC("%s", problem.c_str());
    return problem;
}

// Reads a property-list file that holds a dictionary; null with a reason.
CFDictionaryRef readDictionary(const fs::path& path, std::string& reason) {
    std::string content;
    if (const std::error_code failure = system().ReadFile(path, maximumListBytes, content)) {
        reason = failure.message();
        return nullptr;
    }
    const CFPropertyListRef list =
        CFPropertyListCreateFromXMLData(CFDataCreate(content.data(), content.size()), &reason);
    auto dictionary = cfCast<CFDictionary>(list);
    if (list && !dictionary) {
        reason = "it holds no dictionary";
    }
    return dictionary;
}

class PosixBundle final : public Bundle {
public:
    PosixBundle(fs::path bundleFolder, CFDictionaryRef information, CFStringRef bundleIdentifier)
        : folder(std::move(bundleFolder))
        , info(std::move(information))
        , identifier(std::move(bundleIdentifier)) {}

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
        for (const std::string& language : Languages()) {
            const CFDictionaryRef strings = Table(language, table);
            if (auto text = cfCast<CFString>(CFDictionaryGetValue(strings, key))) {
                return text;
            }
        }
        return defaultText ? defaultText : key;
    }

    Result<std::unique_ptr<PDEPlugIn>> InstantiatePrincipalClass() const override;

private:
    fs::path Resources() const { return folder / "Contents" / "Resources"; }
    std::string InfoText(std::u16string_view key) const { return utf8Text(cfCast<CFString>(InfoValue(key))); }
    const std::vector<std::string>& Languages() const;
    const CFDictionaryRef& Table(const std::string& language, std::string_view table) const;

    fs::path folder;
    CFDictionaryRef info;
    CFStringRef identifier;
    mutable std::vector<std::string> languages; // chosen at the first look-up; then never empty
    mutable std::map<std::string, CFDictionaryRef, std::less<>> tables; // by "LANGUAGE/TABLE"
};

// The first preferred language that the bundle supports, then the development language.
const std::vector<std::string>& PosixBundle::Languages() const {
    if (!languages.empty()) {
        return languages;
    }
    std::string development = InfoText(u"CFBundleDevelopmentRegion");
    if (!isPlainFileName(development)) {
        development = "en";
    }
    std::error_code ignored;
    for (const std::string& tag : system().PreferredLanguages()) {
        const std::vector<std::string> names = languageFolders(tag);
        const auto spoken = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return fs::is_directory(Resources() / (name + ".lproj"), ignored);
        });
        if (spoken != names.end()) {
            languages.push_back(*spoken);
            break;
        }
    }
    if (languages.empty() || languages.front() != development) {
        languages.push_back(development);
    }
    return languages;
}

const CFDictionaryRef& PosixBundle::Table(const std::string& language, std::string_view table) const {
    const std::string place = language + "/" + std::string(table);
    const auto known = tables.find(place);
    if (known != tables.end()) {
        return known->second;
    }
    CFDictionaryRef strings;
    const fs::path path = Resources() / (language + ".lproj") / (std::string(table) + ".strings");
    std::string reason;
    std::error_code ignored;
    if (isPlainFileName(table) && fs::exists(path, ignored)) {
        strings = readDictionary(path, reason);
        if (!strings) {
            report("The strings table " + path.string() + " cannot be used: " + reason);
        }
    }
    return tables.emplace(place, strings).first->second;
}

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
    std::string reason;
    const CFDictionaryRef info = readDictionary(list, reason);
    if (!info) {
        return Fault{report("The bundle's " + list.string() + " cannot be used: " + reason)};
    }
    const auto identifier = cfCast<CFString>(CFDictionaryGetValue(info, u"CFBundleIdentifier"));
    if (CFStringGetLength(identifier) == 0) {
        return Fault{
            report("The bundle's " + list.string() + " cannot be used: it has no CFBundleIdentifier")};
    }
    return BundleRef(std::make_shared<PosixBundle>(path, info, identifier));
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
