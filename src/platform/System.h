// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/CoreFoundation.h"
#include "platform/SecretMemory.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// The operating system: its version and clock, files at fixed places, the user, and the host process.
//
// One instance serves the process. REQUIRES: setSystem is called at start, before the first use; apps and
// tests do so. Every wait, sleep and clock reading goes through it, so that tests of long limits take no
// time, and a person's Cancel can end a wait.

namespace torka::platform {

// The application in whose process the pane runs.
struct HostApplication {
    std::string bundleIdentifier;   // reverse domain, empty when unknown
    std::string shortVersionString; // "CFBundleShortVersionString", such as "5.0.1"
    std::string processName;
};

class System {
public:
    System() = default;
    System(const System&) = delete;
    System& operator=(const System&) = delete;
    virtual ~System();

    // Minor number of the operating system's version; 0 when unavailable.
    virtual int MinorVersion() const = 0;
    // The place of a fixed absolute path ("/Library/…") below the system root. Callers open other paths
    // directly. Returns a relative path unchanged.
    virtual std::filesystem::path Resolve(std::string_view fixedPath) const = 0;
    // Existing folder for the user's temporary files.
    virtual std::filesystem::path TemporaryFolder() const = 0;
    virtual std::filesystem::path HomeFolder() const = 0;
    // The folder of the user's own settings. It need not exist.
    virtual std::filesystem::path ConfigFolder() const = 0;
    // A folder of mode 0700 for this process only. The first call makes it; the end of the instance removes
    // it with its content. Empty when it cannot be made.
    virtual std::filesystem::path PrivateFolder() = 0;
    virtual std::string UserName() const = 0;
    // BCP 47 tags such as "zh-Hans-CN", the most preferred first. Never empty.
    virtual std::vector<std::string> PreferredLanguages() const = 0;
    virtual bool MeasuresInMetric() const = 0;
    virtual HostApplication Host() const = 0;
    // The system's encoding of narrow text (TextEncoding.h).
    virtual CFStringEncoding NarrowEncoding() const = 0;
    // A new random UUID in its textual form (RFC 4122), upper case.
    virtual std::string CreateUuidString() = 0;

    virtual std::chrono::steady_clock::time_point Now() const = 0;
    // The time of the clock that dates files and jobs. This clock may be set back.
    virtual std::chrono::system_clock::time_point CalendarTime() const = 0;
    // Returns false early when the wait is cancelled.
    virtual bool Sleep(std::chrono::milliseconds duration) = 0;

    // Makes a folder of mode 0700, and its parents, unless it exists.
    virtual std::error_code MakeFolder(const std::filesystem::path& path) = 0;
    // Writes a file completely or not at all: writes a temporary neighbour, sets its `mode` and renames it. A
    // failure leaves nothing behind and an existing file unchanged. Writes into a device or a pipe directly.
    virtual std::error_code WriteFile(const std::filesystem::path& path, std::string_view content,
                                      unsigned mode) = 0;
    // Reads a whole file of at most `limit` bytes; std::errc::file_too_large for a longer one.
    virtual std::error_code ReadFile(const std::filesystem::path& path, std::size_t limit,
                                     std::string& content) = 0;
    // Reads a whole file at a fixed path, if no other user can choose its content. Root or this process's
    // user must own the file and every folder and link on its path, including the system root, and nobody
    // else may have write permission for them, except for sticky folders. Otherwise
    // std::errc::operation_not_permitted, and `refusal` names the file or folder, the reason and the remedy.
    virtual std::error_code ReadGuardedFile(std::string_view fixedPath, std::size_t limit,
                                            SecretBytes& content, std::string& refusal) = 0;
};

System& system();
// Replaces the instance for all later calls. REQUIRES: no call into the old instance is running.
void setSystem(std::unique_ptr<System> newSystem);
bool hasSystem();

} // namespace torka::platform
