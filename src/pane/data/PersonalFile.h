// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// What a person keeps about one printer, in files of the person's own configuration folder (docs/presets.md).

namespace torka {

// The file of a printer in the folder `kind` ("presets", "lists"). Any printer name gives one file name.
std::filesystem::path personalFile(std::string_view kind, const CFStringRef& printerName);

// The file's dictionary; null for a missing file and for one that is damaged, which the log names. `failure`
// (may be null) tells that a file is there and cannot be read: do not replace it then.
CFDictionaryRef readPersonalFile(const std::filesystem::path& file, std::error_code* failure = nullptr);

// Writes the file whole or not at all, with mode 0600. The log tells why it cannot. Keeps the text of a
// damaged file in FILE.damaged.
std::error_code writePersonalFile(const std::filesystem::path& file, const CFDictionaryRef& content);

// The lists of a printer that belong to one person. A list exists once the person has changed it; it may be
// empty. A reader cuts neither rows nor their number: the callers know the limits.
class PersonalLists {
public:
    static constexpr std::u16string_view quickAccess = u"QuickAccess"; // keywords
    static constexpr std::u16string_view watermarks = u"Watermarks";   // definitions

    explicit PersonalLists(const CFStringRef& printerName)
        : file(personalFile("lists", printerName)) {}

    // Nothing while the person has no such list. Other elements than texts are skipped.
    std::optional<std::vector<std::string>> Read(std::u16string_view list) const;
    // Keeps the person's other lists.
    bool Write(std::u16string_view list, const std::vector<std::string>& rows) const;

private:
    std::filesystem::path file;
};

// Whether the person wants to see the picture of the job, for all printers. True until the person hides it.
bool personWantsPicture();
bool keepPersonWantsPicture(bool isWanted);

} // namespace torka
