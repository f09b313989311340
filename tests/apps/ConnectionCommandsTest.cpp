// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>

namespace torka {
namespace {

using ::testing::HasSubstr;

// Runs a script, with the tool as "$0", in a network namespace that has only loopback.
tests::CommandResult inOwnNetwork(const std::string& script) {
    return tests::runCommand({"unshare", "--map-root-user", "--net", "sh", "-c",
                              "ip link set lo up && cd /proc/sys/net/ipv4 || exit 99\n" + script,
                              TORKA_BINARY_DIR "/bin/torka"});
}

TEST(PingCommand, AsksTheLoopbackOfAnOwnNetwork) {
    if (inOwnNetwork("echo 0 0 > ping_group_range || exit 99").status != 0) {
        GTEST_SKIP() << "no network namespace with ICMP sockets may be made here";
    }
    const tests::CommandResult answered =
        inOwnNetwork("echo 0 0 > ping_group_range; \"$0\" ping 127.0.0.1 --count 2");
    EXPECT_EQ(answered.status, 0) << answered.errors;
    EXPECT_EQ(answered.output, "127.0.0.1 (127.0.0.1): reply to echo 1 of 2\n"
                               "127.0.0.1 (127.0.0.1): reply to echo 2 of 2\n");
    const tests::CommandResult silent =
        inOwnNetwork("echo 0 0 > ping_group_range; echo 1 > icmp_echo_ignore_all; \"$0\" ping localhost");
    EXPECT_EQ(silent.status, 1);
    EXPECT_EQ(silent.output, "localhost (127.0.0.1): no reply to echo 1 of 3\n");
    const tests::CommandResult unreachable =
        inOwnNetwork("echo 0 0 > ping_group_range; \"$0\" ping 192.0.2.1");
    EXPECT_EQ(unreachable.status, 2);
    EXPECT_THAT(unreachable.errors, HasSubstr(std::strerror(ENETUNREACH)));
    const tests::CommandResult denied = inOwnNetwork("\"$0\" ping 127.0.0.1");
    EXPECT_EQ(denied.status, 2);
    EXPECT_THAT(denied.errors, HasSubstr("ping_group_range"));
}

} // namespace
} // namespace torka
