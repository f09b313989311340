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

// What is asked of the operating system itself: its version, clock, files at fixed places, the user, the host
// process.
//
// One instance serves the process. It is chosen once at start with setSystem (apps and tests do that); until
// then the first use fails. Every wait, sleep and clock reading goes through it, so that tests of long limits
// take no time and a person's Cancel can end a wait.

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
    // Where a fixed absolute path ("/Library/…") really lies: the path below the system root. Other paths are
    // for the caller to open as they are; a relative path comes back unchanged.
    virtual std::filesystem::path Resolve(std::string_view fixedPath) const = 0;
    // Existing folder for the user's temporary files.
    virtual std::filesystem::path TemporaryFolder() const = 0;
    virtual std::filesystem::path HomeFolder() const = 0;
    // Where the user's own settings are kept; it need not exist.
    virtual std::filesystem::path ConfigFolder() const = 0;
    // A folder of mode 0700 for this process alone, made at the first call and removed with what is in it at
    // the end. Empty when it cannot be made.
    virtual std::filesystem::path PrivateFolder() = 0;
    virtual std::string UserName() const = 0;
    // Most preferred first, as BCP 47 tags such as "zh-Hans-CN". Never empty.
    virtual std::vector<std::string> PreferredLanguages() const = 0;
    virtual bool MeasuresInMetric() const = 0;
    virtual HostApplication Host() const = 0;
    // The encoding of narrow text that the system shows (TextEncoding.h).
    virtual CFStringEncoding NarrowEncoding() const = 0;
    // A new random UUID in its textual form (RFC 4122), upper case.
    virtual std::string CreateUuidString() = 0;

    virtual std::chrono::steady_clock::time_point Now() const = 0;
    // By the clock that dates files and jobs; it may be set back.
    virtual std::chrono::system_clock::time_point CalendarTime() const = 0;
    // Returns early, with false, when the wait was cancelled.
    virtual bool Sleep(std::chrono::milliseconds duration) = 0;

    // Makes a folder of mode 0700, and those above it, unless it is there.
    virtual std::error_code MakeFolder(const std::filesystem::path& path) = 0;
    // Writes a whole file so that it is there complete or not at all: a temporary neighbour is written, given
    // `mode` and renamed. On failure nothing is left behind and an existing file stays as it was.
    // A device or a pipe is written into.
    virtual std::error_code WriteFile(const std::filesystem::path& path, std::string_view content,
                                      unsigned mode) = 0;
    // Reads a whole file of at most `limit` bytes; a longer one is std::errc::file_too_large.
    virtual std::error_code ReadFile(const std::filesystem::path& path, std::size_t limit,
                                     std::string& content) = 0;
    // Reads a whole file at a fixed path whose content others must not choose. It is refused, with
    // std::errc::operation_not_permitted, unless root or this process's user owns the file and every folder
    // and link on the way to it from the system root (included), and nobody else may write to them; a sticky
    // folder may be written to. `refusal` then names the file or folder, why, and what to do.
    virtual std::error_code ReadGuardedFile(std::string_view fixedPath, std::size_t limit,
                                            SecretBytes& content, std::string& refusal) = 0;
};

System& system();
// Takes effect for everything that asks afterwards. REQUIRES: no call into the old instance is running.
void setSystem(std::unique_ptr<System> newSystem);
bool hasSystem();

} // namespace torka::platform
