// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/Result.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// The tables of texts in several languages, FOLDER/LANG.lproj/TABLE.strings: property lists that hold a
// dictionary of texts. All texts that people read come from them: those of the pane, of the hosts, of the Job
// Properties module, of the tool.

namespace torka::platform {

class StringTables {
public:
    // Reads nothing yet. Texts that the person's language lacks come from the development language.
    StringTables(std::filesystem::path folder, std::string developmentLanguage);
    // Null when no table has the key.
    CFStringRef Find(const CFStringRef& key, std::string_view table) const;
    // The whole table of the first language that the folder has; null when it lacks the table.
    const CFDictionaryRef& Whole(std::string_view table) const;

private:
    const std::vector<std::string>& Languages() const;
    const CFDictionaryRef& Table(const std::string& language, std::string_view table) const;

    std::filesystem::path folder;
    std::string development;
    mutable std::vector<std::string> languages; // chosen at the first look-up; then never empty
    mutable std::map<std::string, CFDictionaryRef, std::less<>> tables; // by "LANGUAGE/TABLE"
};

// Whether the name is one component of a path that stays in its folder. Refuses hidden files.
bool isPlainFileName(std::string_view name);

// Reads a property-list file of at most 4 MiB that holds a dictionary. Never null on success.
Result<CFDictionaryRef> readDictionaryFile(const std::filesystem::path& path);

} // namespace torka::platform
