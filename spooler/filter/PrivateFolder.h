// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/OpenFile.h"
#include "platform/Result.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// The folder of the filter's tickets and notes. Controls how its files are named and opened.

namespace torka::filter {

// Creates a missing folder and its parents. Everybody may pass the parents.
std::error_code makeFolder(const std::filesystem::path& folder, unsigned mode);

// The names in a folder; none of a folder that cannot be read. Throws std::bad_alloc, where the library's own
// iterators end the process.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

using platform::OpenFile;

// A value, or the error of the operating system.
template <typename Value>
using FileResult = Result<Value, std::error_code>;

// "/Library/Caches/ZAN/" below the system root. Accepts only names without "/", follows no links, and opens
// nothing that another user put there.
//
// Everybody may pass the folder, because the pane looks there for reports whose names it knows. Only the
// filter may list it. Files have mode 0600 unless stated otherwise.
class PrivateFolder {
public:
    // Creates a missing folder. REQUIRES: platform::system() is chosen.
    static std::error_code Prepare();

    // Opens a regular file of this user for reading.
    static FileResult<OpenFile> Open(std::string_view name);
    // Does the same for reading and appending.
    static FileResult<OpenFile> OpenForChange(std::string_view name);
    // Creates a file with this content, open for appending and locked (flock) before anybody else can open
    // it. The error is file_exists when the name is taken.
    static FileResult<OpenFile> Create(std::string_view name, std::string_view content);
    // Waits for the lock of this name; closing the returned file releases it.
    static FileResult<OpenFile> Lock(std::string_view name);
    // Fails with file_too_large beyond the limit.
    static FileResult<std::string> Read(std::string_view name, std::size_t limit);
    // Writes the file whole or not at all.
    static std::error_code Write(std::string_view name, std::string_view content, unsigned mode = 0600);
    static bool Exists(std::string_view name);
    static bool Remove(std::string_view name);
    // Returns the time of a file's last change in seconds since 1970; 0 when there is no such file.
    static std::int64_t Changed(std::string_view name);
    // Lists the regular files, in no order.
    struct Entry {
        std::string name;
        std::size_t bytes = 0;
        std::int64_t changed = 0; // seconds since 1970
    };
    static std::vector<Entry> List();
};

} // namespace torka::filter
