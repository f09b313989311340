#include "tests/support/TestSupport.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

// A request whose job is cancelled while the filter writes the answer. The filter runs without a server.

namespace torka::tests {

namespace {

// The filter with a request for 10.0.0.30.
pid_t startFilter(const std::filesystem::path& root, const std::filesystem::path& request) {
    const pid_t child = fork();
    if (child != 0) {
        return child;
    }
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    setenv("CONTENT_TYPE", "application/vnd.cups-command", 1);
    setenv("PRINTER", "Q", 1);
    setenv("TORKA_SYSTEM_ROOT", root.c_str(), 1);
    execl(TORKA_BINARY_DIR "/bin/torkafilter", "Q", "1", "anna",
          "Command_AllBidi5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85", "1", "", request.c_str(),
          static_cast<char*>(nullptr));
    _exit(127);
}

TEST(CancelledRequest, LeavesNoLockBehind) {
    const TemporaryFolder root;
    const std::filesystem::path records = root / "etc/torka/controllers/10.0.0.30/data";
    std::filesystem::create_directories(records);
    std::string noise(300'000, ' ');
    std::mt19937 random(1);
    for (char& c : noise) {
        c = static_cast<char>('!' + random() % 90);
    }
    root.Write("etc/torka/controllers/10.0.0.30/data/TrayInfo", noise);
    const std::filesystem::path request = root.Write("request", "A-1::DELIMIT::10.0.0.30::DELIMIT::");
    const std::filesystem::path lock = root / "var/cache/torka/queues/Q.open";
    int met = 0; // filters that were met while they held the lock
    for (int i = 0; i < 20 && met < 3; ++i) {
        const pid_t child = startFilter(root.Path(), request);
        ASSERT_GT(child, 0);
        int status = 0;
        bool isLocked = false;
        pid_t ended = 0;
        while (!isLocked && ended == 0) {
            usleep(100);
            isLocked = access(lock.c_str(), F_OK) == 0;
            ended = waitpid(child, &status, WNOHANG);
        }
        if (ended == 0) {
            ++met;
            kill(child, SIGTERM);
            ASSERT_EQ(waitpid(child, &status, 0), child);
        }
        EXPECT_FALSE(std::filesystem::exists(lock)) << status;
        for (const auto& file : std::filesystem::directory_iterator(lock.parent_path())) {
            EXPECT_FALSE(file.path().filename().string().starts_with(".")) << file.path();
        }
    }
    EXPECT_GT(met, 0);
}

} // namespace

} // namespace torka::tests
