#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

// The folder in which the filter keeps tickets and notes of its own, and how a file in it is named and
// opened.

namespace torka::filter {

// Makes a folder that is missing, with its parents, which everybody may pass.
std::error_code makeFolder(const std::filesystem::path& folder, unsigned mode);

// An open file; closed with its owner.
class OpenFile {
public:
    explicit OpenFile(int opened = -1)
        : descriptor(opened) {}
    OpenFile(OpenFile&& other) noexcept
        : descriptor(other.descriptor) {
        other.descriptor = -1;
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;
    ~OpenFile();
    explicit operator bool() const { return descriptor >= 0; }
    int Descriptor() const { return descriptor; }

private:
    int descriptor;
};

// "/Library/Caches/ZAN/" below the system root. Only names without "/" are taken; links are not followed, and
// nothing is opened that another user put there.
//
// The folder may be passed by everybody, because the pane looks there for reports under names that it knows,
// but only the filter may list it; its files have mode 0600 unless said otherwise.
class PrivateFolder {
public:
    // Makes the folder when it is missing. REQUIRES: platform::system() is chosen.
    static std::error_code Prepare();

    // For reading: a regular file of this user. `error` tells why not.
    static OpenFile Open(std::string_view name, std::error_code& error);
    static std::error_code Read(std::string_view name, std::size_t limit, std::string& content);
    // Whole or not at all.
    static std::error_code Write(std::string_view name, std::string_view content, unsigned mode = 0600);
    static bool Exists(std::string_view name);
    static bool Remove(std::string_view name);
    // Removes the files that have such a name and were written longer ago than `age`; how many.
    static int RemoveOlder(std::chrono::seconds age, const std::function<bool(std::string_view)>& isWanted);
};

} // namespace torka::filter
