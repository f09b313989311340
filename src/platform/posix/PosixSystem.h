// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/System.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace torka::platform {

struct PosixSystemOptions {
    int minorVersion = 15; // the value of MinorVersion()
    // The system root for fixed absolute paths; empty for the machine's own root.
    std::filesystem::path root;
    // Whether an absolute path in TORKA_SYSTEM_ROOT replaces an empty `root`. It never does for a process
    // with more rights than its user.
    bool rootFromEnvironment = false;
    std::filesystem::path temporaryFolder; // empty: TMPDIR when it is a folder, else "/tmp"
    std::vector<std::string> languages;    // empty: taken from the environment
    HostApplication host;                  // an empty process name is filled in
    std::string userName;                  // the person worked for; empty: the process's own user
    // Replaces the plain wait, for example to run an event loop. Returns false when the wait is cancelled.
    std::function<bool(std::chrono::milliseconds)> wait;
};

// The operating system of this process.
//
// Other threads and signal handlers may call Cancel. The rules of System hold for the other members.
class PosixSystem final : public System {
public:
    explicit PosixSystem(PosixSystemOptions chosen = {});
    ~PosixSystem() override;

    int MinorVersion() const override { return options.minorVersion; }
    std::filesystem::path Resolve(std::string_view fixedPath) const override;
    std::filesystem::path TemporaryFolder() const override;
    std::filesystem::path HomeFolder() const override;
    // XDG_CONFIG_HOME when it is absolute, else ".config" in the home folder (XDG Base Directory 0.8).
    std::filesystem::path ConfigFolder() const override;
    std::filesystem::path PrivateFolder() override;
    std::string UserName() const override;
    std::vector<std::string> PreferredLanguages() const override;
    bool MeasuresInMetric() const override;
    HostApplication Host() const override;
    CFStringEncoding NarrowEncoding() const override;
    std::string CreateUuidString() override;
    std::chrono::steady_clock::time_point Now() const override { return std::chrono::steady_clock::now(); }
    std::chrono::system_clock::time_point CalendarTime() const override {
        return std::chrono::system_clock::now();
    }
    bool Sleep(std::chrono::milliseconds duration) override;
    std::error_code MakeFolder(const std::filesystem::path& path) override;
    std::error_code WriteFile(const std::filesystem::path& path, std::string_view content,
                              unsigned mode) override;
    // Reads regular files only: a device or a pipe could block the caller.
    std::error_code ReadFile(const std::filesystem::path& path, std::size_t limit,
                             std::string& content) override;
    std::error_code ReadGuardedFile(std::string_view fixedPath, std::size_t limit, SecretBytes& content,
                                    std::string& refusal) override;

    // Ends the sleep under way. Later sleeps end at once until ClearCancel.
    void Cancel();
    void ClearCancel();

private:
    PosixSystemOptions options;
    std::filesystem::path privateFolder;
    int cancelEvent; // an eventfd, readable while cancelled; -1 when it could not be created
};

// A locale name ("zh_TW.UTF-8", "sr_RS@latin") as a BCP 47 tag; empty for "C", "POSIX" and invalid names. A
// Chinese tag contains the script, because the script distinguishes the variants.
std::string languageTag(std::string_view localeName);

} // namespace torka::platform
