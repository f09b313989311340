// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/Noise.h"
#include "tests/support/TestSupport.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

// Filters that are ended in the middle of their work. They run without a server.

namespace torka::tests {

namespace {

namespace fs = std::filesystem;

pid_t startFilter(const fs::path& root, const char* title, const fs::path& text,
                  const std::string& options = {}) {
    const pid_t child = fork();
    if (child != 0) {
        return child;
    }
    setpgid(0, 0);
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    setenv("CONTENT_TYPE", "application/vnd.cups-command", 1);
    setenv("PRINTER", "Q", 1);
    setenv("TORKA_SYSTEM_ROOT", root.c_str(), 1);
    execl(TORKA_BINARY_DIR "/bin/torkafilter", "Q", "1", "anna", title, "1", options.c_str(), text.c_str(),
          static_cast<char*>(nullptr));
    _exit(127);
}

int statusOf(pid_t child) {
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

// Ends a filter (below 0: its whole group) once something is seen of its work. False when it was over first.
bool endWhen(pid_t target, int signal, const std::function<bool()>& isSeen) {
    const pid_t child = std::abs(target);
    while (!isSeen()) {
        siginfo_t ended{};
        if (waitid(P_PID, static_cast<id_t>(child), &ended, WEXITED | WNOHANG | WNOWAIT) != 0 ||
            ended.si_pid == child) {
            statusOf(child);
            return false;
        }
        usleep(100);
    }
    kill(target, signal);
    EXPECT_EQ(statusOf(child), signal) << "ended by it, as the server wants to see it";
    return true;
}

TEST(EndedFilter, CancelledRequestLeavesNoLockBehind) {
    const TemporaryFolder root;
    fs::create_directories(root / "etc/torka/controllers/10.0.0.30/data");
    root.Write("etc/torka/controllers/10.0.0.30/data/TrayInfo", noise(300'000));
    const fs::path request = root.Write("request", "A-1::DELIMIT::10.0.0.30::DELIMIT::");
    const fs::path lock = root / "var/cache/torka/queues/Q.open";
    int met = 0; // filters that were met while they held the lock
    for (int i = 0; i < 20 && met < 4; ++i) {
        const pid_t child =
            startFilter(root.Path(), "Command_AllBidi5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85", request);
        met += endWhen(met % 2 == 0 ? child : -child, SIGTERM, [&lock] { return fs::exists(lock); }) ? 1 : 0;
        EXPECT_FALSE(fs::exists(lock));
        for (const auto& file : fs::directory_iterator(lock.parent_path())) {
            EXPECT_FALSE(file.path().filename().string().starts_with(".")) << file.path();
        }
    }
    EXPECT_GT(met, 0);
}

TEST(EndedFilter, KilledOneLeavesNoHalfTicketAndIsStartedAgain) {
    const std::string name = "Torka.temp5D2E7A41-9C3B-4F60-8E17-B04A6C2D9F85";
    std::string text = noise(1'000'000);
    while (text.size() < 10'000'000) {
        text += text;
    }
    bool isMet = false;
    for (int i = 0; i < 20 && !isMet; ++i) {
        const TemporaryFolder root;
        const fs::path folder = root / "var/cache/torka/ZAN";
        fs::create_directories(folder);
        const fs::path ticket = root.Write("ticket", text);
        const auto start = [&] {
            return startFilter(root.Path(), "Command_WritePSTemp", ticket, "torka-ticket=" + name);
        };
        // While the text goes into a file of another name.
        isMet = endWhen(-start(), SIGKILL, [&folder] {
            const fs::directory_iterator files(folder);
            return std::any_of(begin(files), end(files), [](const fs::directory_entry& file) {
                std::error_code error;
                return file.path().filename().string().starts_with(".torka-") && file.file_size(error) > 0;
            });
        });
        if (isMet && !fs::exists(folder / name)) {
            EXPECT_EQ(statusOf(start()), 0);
        }
        EXPECT_TRUE(readFile(folder / name) == text);
    }
    EXPECT_TRUE(isMet);
}

} // namespace

} // namespace torka::tests
