// SPDX-License-Identifier: Apache-2.0
#include "spooler/filter/Confinement.h"

#include "platform/SecretMemory.h"
#include "tests/support/TestSupport.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
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
    struct Case {
        const char* name;
        Network network;
        std::function<int()> call;
        int expected;
    };
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
    const auto core = [] {
        ::abort();
        return 0;
    };
    const Case cases[] = {
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
    for (const Case& entry : cases) {
        const int answer = inChild([&entry] {
            const auto problems = confine(entry.network);
            return problems.empty() ? entry.call() : 200;
        });
        EXPECT_EQ(answer, entry.expected) << entry.name;
    }
}

// Checks the program itself while it waits for its document.
TEST_F(Confinement, ProgramIsConfinedBeforeItReads) {
    std::array<int, 2> input{};
    ASSERT_EQ(::pipe2(input.data(), O_CLOEXEC), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(input[0], STDIN_FILENO);
        ::execl(TORKA_BINARY_DIR "/bin/torkafilter", "torkafilter", "1", "lp", "title", "1", "", nullptr);
        ::_exit(127);
    }
    const std::string watching = std::to_string(child);
    std::string process;
    std::string status;
    for (int i = 0; i < 1000 && status.find("Seccomp:\t2") == std::string::npos; ++i) {
        ::usleep(10000);
        const std::string worker = tests::readFile("/proc/" + watching + "/task/" + watching + "/children");
        process = "/proc/" + worker.substr(0, worker.find(' '));
        status = worker.empty() ? "" : tests::readFile(process + "/status");
    }
    EXPECT_THAT(status, HasSubstr("NoNewPrivs:\t1\n"));
    EXPECT_THAT(status, HasSubstr("Seccomp:\t2\n"));
    EXPECT_THAT(tests::readFile(process + "/limits"),
                HasSubstr("Max core file size        0                    0"));
    ::close(input[1]);
    int ended = 0;
    ::waitpid(child, &ended, 0);
    EXPECT_TRUE(WIFEXITED(ended) && WEXITSTATUS(ended) == 0) << ended;
}

// Simulates a kernel without system-call filters: an outer filter refuses to install one.
TEST_F(Confinement, PrintsWithoutTheKernelsHelp) {
    const tests::TemporaryFolder folder;
    const std::string document = folder.Write("document", "%!PS\nshowpage\n");
    std::array<int, 2> output{};
    std::array<int, 2> errors{};
    ASSERT_EQ(::pipe(output.data()), 0);
    ASSERT_EQ(::pipe(errors.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        ::dup2(output[1], STDOUT_FILENO);
        ::dup2(errors[1], STDERR_FILENO);
        scmp_filter_ctx list = ::seccomp_init(SCMP_ACT_ALLOW);
        ::seccomp_rule_add(list, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(seccomp), 0);
        const scmp_arg_cmp isSeccomp{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
        ::seccomp_rule_add_array(list, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1, &isSeccomp);
        if (::seccomp_load(list) == 0) {
            ::execl(TORKA_BINARY_DIR "/bin/torkafilter", "torkafilter", "1", "lp", "title", "1", "",
                    document.c_str(), nullptr);
        }
        ::_exit(127);
    }
    ::close(output[1]);
    ::close(errors[1]);
    const auto readAll = [](int from) {
        std::string text;
        char block[4096];
        for (ssize_t count = 0; (count = ::read(from, block, sizeof block)) > 0;) {
            text.append(block, static_cast<std::size_t>(count));
        }
        ::close(from);
        return text;
    };
    const std::string printed = readAll(output[0]);
    const std::string told = readAll(errors[0]);
    int ended = 0;
    ::waitpid(child, &ended, 0);
    EXPECT_TRUE(WIFEXITED(ended) && WEXITSTATUS(ended) == 0) << ended;
    EXPECT_EQ(printed, "%!PS\nshowpage\n");
    EXPECT_THAT(told, HasSubstr("DEBUG: system calls cannot be refused"));
}

} // namespace
} // namespace torka::filter
