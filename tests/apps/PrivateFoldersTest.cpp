// SPDX-License-Identifier: Apache-2.0
#include "Tool.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace torka::tests {

namespace {

namespace fs = std::filesystem;

std::size_t entriesOf(const fs::path& folder) {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

// Runs `torka emit` until it has made its folder and blocks, because nobody reads what it writes. Ends it by
// the signal, also where the shell that started this program ignores it. Returns the one that has ended it.
int endEmitBy(int signal, const fs::path& temporary) {
    static constexpr const char* script =
        "import os, signal, subprocess, sys, time\n"
        "if sys.argv[2] != '9': signal.signal(int(sys.argv[2]), signal.SIG_DFL)\n"
        "os.environ['TMPDIR'] = folder = sys.argv[1]\n"
        "tool = subprocess.Popen(sys.argv[3:], stdout=subprocess.PIPE, pipesize=4096)\n"
        "while not any(os.listdir(os.path.join(folder, each)) for each in os.listdir(folder)):\n"
        "    time.sleep(0.01)\n"
        "tool.send_signal(int(sys.argv[2]))\n"
        "sys.exit(-tool.wait())\n";
    return runCommand({"/usr/bin/python3", "-c", script, temporary.string(), std::to_string(signal),
                       TORKA_BINARY_DIR "/bin/torka", "emit", samplePath("torka-production.ppd")})
        .status;
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
