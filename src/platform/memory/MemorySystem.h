// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/System.h"
#include "platform/TextEncoding.h"

#include <functional>
#include <map>
#include <string>

namespace torka::platform {

// A system in memory. It returns the answers that a test sets and keeps its files in memory. Its clock moves
// only in sleeps.
//
// Owns its files. Tests may change the public members at any time. Not thread-safe.
class MemorySystem : public System {
public:
    struct File {
        std::string content;
        unsigned mode = 0;
    };

    int MinorVersion() const override { return minorVersion; }
    std::filesystem::path Resolve(std::string_view fixedPath) const override;
    std::filesystem::path TemporaryFolder() const override { return temporaryFolder; }
    std::filesystem::path HomeFolder() const override { return homeFolder; }
    std::filesystem::path ConfigFolder() const override { return homeFolder / ".config"; }
    std::filesystem::path PrivateFolder() override { return temporaryFolder / "private"; }
    std::string UserName() const override { return userName; }
    std::vector<std::string> PreferredLanguages() const override { return languages; }
    bool MeasuresInMetric() const override { return metric; }
    HostApplication Host() const override { return host; }
    CFStringEncoding NarrowEncoding() const override { return narrowEncoding; }
    // Counts up from "00000000-0000-4000-8000-000000000001", so that tests can compare results.
    std::string CreateUuidString() override;
    std::chrono::steady_clock::time_point Now() const override { return now; }
    // The machine's, as it dates the files that a test writes.
    std::chrono::system_clock::time_point CalendarTime() const override {
        return std::chrono::system_clock::now();
    }
    bool Sleep(std::chrono::milliseconds duration) override;
    // Does nothing: files have paths, and there are no folders.
    std::error_code MakeFolder(const std::filesystem::path& /*path*/) override { return {}; }
    std::error_code WriteFile(const std::filesystem::path& path, std::string_view content,
                              unsigned mode) override;
    std::error_code ReadFile(const std::filesystem::path& path, std::size_t limit,
                             std::string& content) override;
    // Never refuses: all files in memory belong to this process's user.
    std::error_code ReadGuardedFile(std::string_view fixedPath, std::size_t limit, SecretBytes& content,
                                    std::string& refusal) override;

    int minorVersion = 15;
    std::filesystem::path root;
    std::filesystem::path temporaryFolder = "/tmp";
    std::filesystem::path homeFolder = "/home/user";
    std::string userName = "user";
    std::vector<std::string> languages = {"en-US"};
    bool metric = true;
    HostApplication host;
    CFStringEncoding narrowEncoding = kCFStringEncodingUTF8;
    std::uint64_t uuidsMade = 0;
    std::chrono::steady_clock::time_point now{std::chrono::hours(1)};
    // The time at which a person cancels. A sleep that would pass this time ends at it, and later sleeps end
    // at once.
    std::chrono::steady_clock::time_point cancelAt = std::chrono::steady_clock::time_point::max();
    // Called after the clock has moved; stands in for other processes.
    std::function<void()> onSleep;
    // When set, called before each write. An error makes the write fail without effect.
    std::function<std::error_code(const std::filesystem::path&)> writeFailure;
    std::map<std::filesystem::path, File> files;
};

} // namespace torka::platform
