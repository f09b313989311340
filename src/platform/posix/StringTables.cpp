// SPDX-License-Identifier: Apache-2.0
#include "platform/posix/StringTables.h"

#include "platform/Log.h"
#include "platform/PropertyList.h"
#include "platform/System.h"
#include "platform/posix/LanguageFolders.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace torka::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t maximumListBytes = std::size_t{4} * 1024 * 1024;

} // namespace

bool isPlainFileName(std::string_view name) {
    return !name.empty() && name.front() != '.' && name.find('/') == std::string_view::npos &&
           name.find('\0') == std::string_view::npos;
}

Result<CFDictionaryRef> readDictionaryFile(const fs::path& path) {
    std::string content;
    if (const std::error_code failure = system().ReadFile(path, maximumListBytes, content)) {
        return Fault{failure.message()};
    }
    std::string reason;
    const CFPropertyListRef list =
        CFPropertyListCreateFromXMLData(CFDataCreate(content.data(), content.size()), &reason);
    auto dictionary = cfCast<CFDictionary>(list);
    if (!dictionary) {
        std::replace_if(
            reason.begin(), reason.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
        return Fault{list ? "it holds no dictionary" : reason};
    }
    return dictionary;
}

StringTables::StringTables(fs::path resources, std::string developmentLanguage)
    : folder(std::move(resources))
    , development(isPlainFileName(developmentLanguage) ? std::move(developmentLanguage) : "en") {}

CFStringRef StringTables::Find(const CFStringRef& key, std::string_view table) const {
    for (const std::string& language : Languages()) {
        if (auto text = cfCast<CFString>(CFDictionaryGetValue(Table(language, table), key))) {
            return text;
        }
    }
    return nullptr;
}

const CFDictionaryRef& StringTables::Whole(std::string_view table) const {
    return Table(Languages().front(), table);
}

// The first preferred language that the folder has, or that needs no folder, then the development language.
const std::vector<std::string>& StringTables::Languages() const {
    if (!languages.empty()) {
        return languages;
    }
    std::error_code ignored;
    for (const std::string& tag : system().PreferredLanguages()) {
        const std::vector<std::string> names = languageFolders(tag);
        const auto spoken = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
            return name == development || fs::is_directory(folder / (name + ".lproj"), ignored);
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

const CFDictionaryRef& StringTables::Table(const std::string& language, std::string_view table) const {
    const std::string place = language + "/" + std::string(table);
    const auto known = tables.find(place);
    if (known != tables.end()) {
        return known->second;
    }
    CFDictionaryRef strings;
    const fs::path path = folder / (language + ".lproj") / (std::string(table) + ".strings");
    std::error_code ignored;
    if (isPlainFileName(table) && fs::exists(path, ignored)) {
        Result<CFDictionaryRef> read = readDictionaryFile(path);
        if (read) {
            strings = *std::move(read);
        } else {
            myNSLogC("The strings table %s cannot be used: %s", path.c_str(), read.Why().text.c_str());
        }
    }
    return tables.emplace(place, std::move(strings)).first->second;
}

} // namespace torka::platform
