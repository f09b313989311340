// SPDX-License-Identifier: Apache-2.0
#include "Tool.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace torka::tests {

namespace {

namespace fs = std::filesystem;

std::size_t entriesOf(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Runs `torka emit` until it has made its folder and blocks at its first output, because the pipe is full.
// Ends it by the signal.
int endEmitBy(int signal, const fs::path& temporary) {
    int output[2];
    EXPECT_EQ(::pipe2(output, O_NONBLOCK | O_CLOEXEC), 0);
    const std::string block(4096, ' ');
    while (::write(output[1], block.data(), block.size()) > 0) {
    }
    ::fcntl(output[1], F_SETFL, 0);
    const pid_t tool = ::fork();
    if (tool == 0) {
        ::setenv("TMPDIR", temporary.c_str(), 1);
        ::dup2(output[1], STDOUT_FILENO);
        ::execl(TORKA_BINARY_DIR "/bin/torka", "torka", "emit", samplePath("torka-production.ppd").c_str(),
                nullptr);
        ::_exit(127);
    }
    for (int i = 0;
         i < 3000 && (entriesOf(temporary) == 0 || fs::is_empty(fs::directory_iterator(temporary)->path()));
         ++i) {
        ::usleep(10000);
    }
    EXPECT_EQ(entriesOf(temporary), 1U);
    ::kill(tool, signal);
    int status = 0;
    ::waitpid(tool, &status, 0);
    ::close(output[0]);
    ::close(output[1]);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

} // namespace

TEST(PrivateFolders, GoWithTheirProcess) {
    const TemporaryFolder temporary;
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        EXPECT_EQ(endEmitBy(signal, temporary.Path()), signal);
        EXPECT_EQ(entriesOf(temporary.Path()), 0U) << signal;
    }
    // The next start removes a folder that SIGKILL left behind, when it is a minute old. It keeps the folder
    // of a living process, and folders with similar names.
    EXPECT_EQ(endEmitBy(SIGKILL, temporary.Path()), SIGKILL);
    const auto age = [](const fs::path& path) {
        const timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
        EXPECT_EQ(::utimensat(AT_FDCWD, path.c_str(), old, 0), 0);
    };
    const fs::path left = fs::directory_iterator(temporary.Path())->path();
    const fs::path used = temporary / "torka-abcdef";
    const fs::path open = temporary / "torka-ghijkl";
    const fs::path longer = temporary / "torka-mnopqrs";
    for (const fs::path& folder : {used, open, longer}) {
        fs::create_directory(folder);
        fs::permissions(folder, fs::perms::owner_all);
    }
    fs::permissions(open, static_cast<fs::perms>(0755));
    const int lock = ::open(used.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX), 0);
    for (const fs::path& folder : {left, used, open, longer}) {
        age(folder);
    }
    ::setenv("TMPDIR", temporary.Path().c_str(), 1);
    EXPECT_EQ(runTool({"emit", samplePath("torka-production.ppd")}).status, 0);
    ::unsetenv("TMPDIR");
    EXPECT_FALSE(fs::exists(left));
    EXPECT_EQ(entriesOf(temporary.Path()), 3U);
    ::close(lock);
}

} // namespace torka::tests
