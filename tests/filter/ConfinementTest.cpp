// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Confinement.h"

#include "platform/SecretMemory.h"
#include "tests/support/TestSupport.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace torka::filter {
namespace {

using ::testing::HasSubstr;

// Runs `answer` in a child process. Returns the exit status, or 256 plus the signal that ended the child.
int inChild(const std::function<int()>& answer) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(answer());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 256 + WTERMSIG(status);
}

int socketError(int family) {
    const int made = ::socket(family, SOCK_DGRAM, 0);
    return made >= 0 ? 0 : errno;
}

class Confinement : public ::testing::Test {
protected:
    void SetUp() override {
        if (platform::hasAddressSanitizer) {
            GTEST_SKIP() << "a sanitizer needs the calls that are refused";
        }
    }
};

TEST_F(Confinement, RefusesWhatNoJobNeeds) {
    const auto exec = [] {
        ::execl("/bin/true", "true", nullptr);
        return errno;
    };
    const auto fork = [] {
        const pid_t child = ::fork();
        if (child == 0) {
            ::_exit(0);
        }
        return child < 0 ? errno : 0;
    };
    const auto thread = [] {
        int value = 1;
        std::thread([&value] { value = 0; }).join();
        return value;
    };
    const auto core = []() -> int { ::abort(); };
    const struct {
        const char* name;
        Network network;
        std::function<int()> call;
        int expected;
    } cases[] = {
        {"local socket", Network::none, [] { return socketError(AF_UNIX); }, 0},
        {"IPv4", Network::none, [] { return socketError(AF_INET); }, EAFNOSUPPORT},
        {"IPv6", Network::none, [] { return socketError(AF_INET6); }, EAFNOSUPPORT},
        {"addresses", Network::none, [] { return socketError(AF_NETLINK); }, EAFNOSUPPORT},
        {"IPv4 for a request", Network::allowed, [] { return socketError(AF_INET); }, 0},
        {"addresses for a request", Network::allowed, [] { return socketError(AF_NETLINK); }, 0},
        {"packets for a request", Network::allowed, [] { return socketError(AF_PACKET); }, EAFNOSUPPORT},
        {"family beyond all", Network::allowed, [] { return socketError(AF_MAX + 3); }, EAFNOSUPPORT},
        {"program", Network::none, exec, EPERM},
        {"program for a request", Network::allowed, exec, EPERM},
        {"process", Network::none, fork, EPERM},
        {"thread", Network::none, thread, 0},
        {"other memory", Network::none,
         [] { return ::process_vm_readv(::getppid(), nullptr, 0, nullptr, 0, 0) == 0 ? 0 : errno; }, EPERM},
        {"core file", Network::none, [] { return ::prctl(PR_GET_DUMPABLE); }, 0},
        {"end by a signal", Network::none, core, 256 + SIGABRT},
    };
    for (const auto& entry : cases) {
        const int answer = inChild([&entry] {
            const auto problems = confine(entry.network);
            return problems.empty() ? entry.call() : 200;
        });
        EXPECT_EQ(answer, entry.expected) << entry.name;
    }
}

// Checks the program itself, its worker, while it waits for its document.
TEST_F(Confinement, ProgramIsConfinedBeforeItReads) {
    const std::string told = tests::runPython(
        "import pathlib, resource, subprocess, sys, time\n"
        "resource.setrlimit(resource.RLIMIT_NOFILE, (200, 300))\n"
        "resource.setrlimit(resource.RLIMIT_CPU, (7230, 7230))\n"
        "watching = subprocess.Popen(sys.argv[1:], stdin=subprocess.PIPE)\n"
        "status = ''\n"
        "for _ in range(1000):\n"
        "    tasks = pathlib.Path(f'/proc/{watching.pid}/task/{watching.pid}/children').read_text().split()\n"
        "    status = pathlib.Path(f'/proc/{tasks[0]}/status').read_text() if tasks else ''\n"
        "    if 'Seccomp:\\t2' in status: break\n"
        "    time.sleep(0.01)\n"
        "print(status, pathlib.Path(f'/proc/{tasks[0]}/limits').read_text())\n"
        "watching.stdin.close()\n"
        "sys.exit(watching.wait())\n",
        {TORKA_BINARY_DIR "/bin/torkafilter", "1", "lp", "title", "1", ""});
    EXPECT_THAT(told, HasSubstr("NoNewPrivs:\t1\n"));
    EXPECT_THAT(told, HasSubstr("Seccomp:\t2\n"));
    // The server's own limits stay where they are lower.
    for (const char* limits : {"core file size +0 +0", "open files +200 +256", "cpu time +7200 +7230"}) {
        EXPECT_THAT(told, testing::ContainsRegex(std::string("Max ") + limits + " "));
    }
}

// Simulates a kernel without system-call filters: an outer filter refuses to install one.
TEST_F(Confinement, PrintsWithoutTheKernelsHelp) {
    const tests::TemporaryFolder folder;
    const std::string document = folder.Write("document", "%!PS\nshowpage\n");
    const int ended = inChild([&folder, &document] {
        ::dup2(::creat((folder / "output").c_str(), 0600), STDOUT_FILENO);
        ::dup2(::creat((folder / "errors").c_str(), 0600), STDERR_FILENO);
        scmp_filter_ctx list = ::seccomp_init(SCMP_ACT_ALLOW);
        ::seccomp_rule_add(list, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(seccomp), 0);
        const scmp_arg_cmp isSeccomp{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
        ::seccomp_rule_add_array(list, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1, &isSeccomp);
        if (::seccomp_load(list) == 0) {
            ::execl(TORKA_BINARY_DIR "/bin/torkafilter", "torkafilter", "1", "lp", "title", "1", "",
                    document.c_str(), nullptr);
        }
        return 127;
    });
    EXPECT_EQ(ended, 0);
    EXPECT_EQ(tests::readFile(folder / "output"), "%!PS\nshowpage\n");
    EXPECT_THAT(tests::readFile(folder / "errors"), HasSubstr("DEBUG: system calls cannot be refused"));
}

} // namespace
} // namespace torka::filter
