// SPDX-License-Identifier: Apache-2.0
#include "platform/Log.h"
#include "platform/memory/MemorySystem.h"
#include "platform/posix/PosixSystem.h"
#include "tests/support/TestSupport.h"

#include <cstdlib>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <map>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace torka {
namespace {

using namespace std::chrono_literals;
using torka::tests::TemporaryFolder;

// Sets environment variables for one test and restores the old values at its end.
class ScopedEnvironment {
public:
    using Variables = std::map<std::string, std::string>;
    explicit ScopedEnvironment(const Variables& wanted) {
        for (const char* name :
             {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LC_MEASUREMENT", "LANG", "TMPDIR", "TORKA_SYSTEM_ROOT"}) {
            const char* value = std::getenv(name);
            saved.emplace_back(name, value ? value : "");
            const auto place = wanted.find(name);
            set(name, place == wanted.end() ? "" : place->second);
        }
    }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment() {
        for (const auto& [name, value] : saved) {
            set(name, value);
        }
    }

private:
    static void set(const std::string& name, const std::string& value) {
        if (value.empty()) {
            unsetenv(name.c_str());
        } else {
            setenv(name.c_str(), value.c_str(), 1);
        }
    }
    std::vector<std::pair<std::string, std::string>> saved;
};

TEST(PosixSystem, FixedPathsLieBelowTheRootAndCannotLeaveIt) {
    const std::pair<const char*, const char*> cases[] = {
        {"/Library/Caches/ZAN/x", "/sys/root/var/cache/torka/ZAN/x"},
        {"/Library/Application Support/ZAN/x", "/sys/root/var/lib/torka/ZAN/x"},
        {"/Library/Preferences/x", "/sys/root/var/lib/torka/Preferences/x"},
        {"/etc/torka/Library/x", "/sys/root/etc/torka/Library/x"},
        {"/Library/../../../etc/passwd", "/sys/root/etc/passwd"},
        {"relative/x", "relative/x"},
    };
    PosixSystemOptions options;
    options.root = "/sys/root";
    for (const auto& [fixed, real] : cases) {
        EXPECT_EQ(PosixSystem(options).Resolve(fixed), real);
    }
    EXPECT_EQ(PosixSystem().Resolve("/Library/x"), "/var/lib/torka/x");
}

TEST(PosixSystem, TheEnvironmentSetsTheRootOnlyWhenAsked) {
    const ScopedEnvironment environment(ScopedEnvironment::Variables{{"TORKA_SYSTEM_ROOT", "/other"}});
    PosixSystemOptions options;
    EXPECT_EQ(PosixSystem(options).Resolve("/x"), "/x");
    options.rootFromEnvironment = true;
    EXPECT_EQ(PosixSystem(options).Resolve("/x"), "/other/x");
    options.root = "/mine";
    EXPECT_EQ(PosixSystem(options).Resolve("/x"), "/mine/x");
}

TEST(PosixSystem, LanguagesFollowTheEnvironment) {
    const std::tuple<std::map<std::string, std::string>, std::vector<std::string>, bool> cases[] = {
        {{}, {"en"}, true},
        {{{"LANG", "C.UTF-8"}, {"LANGUAGE", "de"}}, {"en"}, true},
        {{{"LANG", "en_US.UTF-8"}}, {"en-US"}, false},
        {{{"LANG", "en_US.UTF-8"}, {"LC_MEASUREMENT", "de_DE.UTF-8"}}, {"en-US"}, true},
        {{{"LANG", "ja_JP.eucJP"}, {"LC_MESSAGES", "zh_TW.UTF-8"}}, {"zh-Hant-TW"}, true},
        {{{"LC_ALL", "fr_CA"}, {"LC_MESSAGES", "de_DE"}}, {"fr-CA"}, true},
        {{{"LANG", "zh_CN.UTF-8"}, {"LANGUAGE", "sr_RS@latin:zh_CN:../../x:pt"}},
         {"sr-Latn-RS", "zh-Hans-CN", "pt"},
         true},
    };
    for (const auto& [variables, languages, metric] : cases) {
        const ScopedEnvironment environment(variables);
        EXPECT_EQ(PosixSystem().PreferredLanguages(), languages);
        EXPECT_EQ(PosixSystem().MeasuresInMetric(), metric) << languages.front();
    }
}

TEST(PosixSystem, KnowsUserFoldersAndHost) {
    const ScopedEnvironment environment(ScopedEnvironment::Variables{{"TMPDIR", "/no/such/folder"}});
    PosixSystem system;
    EXPECT_EQ(system.TemporaryFolder(), "/tmp");
    EXPECT_EQ(system.UserName() + "\n", tests::runCommand({"id", "-un"}).output);
    EXPECT_EQ(system.Host().processName, "test_platform");
    const std::string uuid = system.CreateUuidString();
    EXPECT_THAT(
        uuid, ::testing::MatchesRegex("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"));
    EXPECT_NE(system.CreateUuidString(), uuid);
}

TEST(PosixSystem, ASleepEndsAtCancelAndStaysCancelled) {
    PosixSystem system;
    EXPECT_TRUE(system.Sleep(1ms));
    std::thread person([&system] { system.Cancel(); });
    EXPECT_FALSE(system.Sleep(10min));
    person.join();
    EXPECT_FALSE(system.Sleep(10min));
    system.ClearCancel();
    EXPECT_TRUE(system.Sleep(1ms));
    EXPECT_TRUE(system.Sleep(-5ms));
}

std::size_t filesIn(const std::filesystem::path& folder) {
    const std::filesystem::directory_iterator all(folder);
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST(PosixSystem, FilesAreWrittenWholeWithTheirMode) {
    const TemporaryFolder folder;
    PosixSystem system;
    const mode_t oldMask = umask(077);
    for (const unsigned mode : {0666U, 0600U}) {
        const std::string content = std::string(300'000, 'a') + '\0' + std::to_string(mode);
        ASSERT_FALSE(system.WriteFile(folder / "file", content, mode));
        struct stat facts {};
        ASSERT_EQ(stat((folder / "file").c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 07777U, mode);
        std::string read;
        ASSERT_FALSE(system.ReadFile(folder / "file", content.size(), read));
        EXPECT_EQ(read, content);
        EXPECT_EQ(system.ReadFile(folder / "file", content.size() - 1, read), std::errc::file_too_large);
        EXPECT_EQ(read, "");
    }
    umask(oldMask);
    EXPECT_EQ(filesIn(folder.Path()), 1U);
    std::string read;
    EXPECT_EQ(system.ReadFile(folder / "none", 10, read), std::errc::no_such_file_or_directory);
    EXPECT_EQ(system.ReadFile(folder.Path(), 10, read), std::errc::is_a_directory);
    EXPECT_EQ(system.ReadFile("/dev/zero", 10, read), std::errc::invalid_argument);
    EXPECT_EQ(system.ReadFile("/proc/self/status", 1'000'000, read), std::error_code()); // reports size 0
    EXPECT_NE(read.find("Name:"), std::string::npos);
    EXPECT_EQ(system.WriteFile(std::string("/tmp/a\0b", 8), "", 0600), std::errc::invalid_argument);
}

TEST(PosixSystem, AFailedWriteLeavesEverythingAsItWas) {
    const TemporaryFolder folder;
    PosixSystem system;
    ASSERT_FALSE(system.WriteFile(folder / "file", "old", 0600));
    std::filesystem::create_directory(folder / "taken");
    EXPECT_EQ(system.WriteFile(folder / "no/such/file", "new", 0600), std::errc::no_such_file_or_directory);
    EXPECT_TRUE(system.WriteFile(folder / "taken", "new", 0600)); // fails at a folder
    {
        // A limit on the file size makes a write fail half-way, as a full disk does.
        struct rlimit before {};
        getrlimit(RLIMIT_FSIZE, &before);
        const auto handler = signal(SIGXFSZ, SIG_IGN);
        struct rlimit tight = before;
        tight.rlim_cur = 10'000;
        setrlimit(RLIMIT_FSIZE, &tight);
        EXPECT_EQ(system.WriteFile(folder / "file", std::string(100'000, 'n'), 0600),
                  std::errc::file_too_large);
        setrlimit(RLIMIT_FSIZE, &before);
        signal(SIGXFSZ, handler);
    }
    EXPECT_EQ(tests::readFile(folder / "file"), "old");
    EXPECT_EQ(filesIn(folder.Path()), 2U);
    // A pipe or device receives the content and is not replaced.
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const int reader = open((folder / "pipe").c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_FALSE(system.WriteFile(folder / "pipe", "new", 0600));
    char piped[4] = {};
    EXPECT_EQ(read(reader, piped, sizeof piped), 3);
    EXPECT_STREQ(piped, "new");
    close(reader);
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
    // A link is replaced, and its target stays unchanged.
    std::filesystem::create_symlink(folder / "file", folder / "link");
    ASSERT_FALSE(system.WriteFile(folder / "link", "new", 0600));
    EXPECT_EQ(tests::readFile(folder / "file"), "old");
    EXPECT_EQ(tests::readFile(folder / "link"), "new");
}

TEST(Log, TextsAreNoFormatsAndMayBeNull) {
    tests::CapturingLog log;
    const std::string name = "50%s%n";
    myNSLog(nullptr);
    myNSLog8(nullptr);
    myNSLog(name.c_str());
    myNSLogC("%s", (name + std::string(5000, 'x')).c_str());
    EXPECT_THAT(log.Lines(), ::testing::ElementsAre("myNSLog msg nil", "myNSLog8 nil", "myNSLog msg '50%s%n'",
                                                    name + std::string(4089, 'x')));
    EXPECT_DEATH(TORKA_ASSERT(name.empty(), "a test"), "");
}

} // namespace
} // namespace torka
