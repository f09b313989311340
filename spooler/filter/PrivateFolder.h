#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

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
    // The same for reading and appending.
    static OpenFile OpenForChange(std::string_view name, std::error_code& error);
    // A new file with this content, open for appending and locked (flock) before anybody else can open it.
    // The error file_exists when there is something of that name.
    static OpenFile Create(std::string_view name, std::string_view content, std::error_code& error);
    // Waits for the lock of this name, which its file's owner lets go by closing it. Empty when there is
    // none.
    static OpenFile Lock(std::string_view name);
    static std::error_code Read(std::string_view name, std::size_t limit, std::string& content);
    // Whole or not at all.
    static std::error_code Write(std::string_view name, std::string_view content, unsigned mode = 0600);
    static bool Exists(std::string_view name);
    static bool Remove(std::string_view name);
    // Of a file's last change, seconds since 1970; 0 when there is no such file.
    static std::int64_t Changed(std::string_view name);
    // The regular files, in no order.
    struct Entry {
        std::string name;
        std::size_t bytes = 0;
        std::int64_t changed = 0; // seconds since 1970
    };
    static std::vector<Entry> List();
};

} // namespace torka::filter
