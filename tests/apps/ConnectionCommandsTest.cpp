// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <cstring>

namespace torka {
namespace {

using ::testing::HasSubstr;
using tests::runTool;
using tests::runToolForJson;

TEST(AddressCommand, KeepsAListThatPythonReads) {
    const tests::TemporaryFolder folder;
    const std::string file = (folder / "list.plist").string();
    const auto set = [&file](std::vector<std::string> entry) {
        entry.insert(entry.begin(), {"address", "set", "--force", "--file", file});
        return runTool(entry);
    };
    EXPECT_EQ(set({"Office", "10.0.0.1", "--two-way"}).status, 0);
    EXPECT_EQ(set({"B\xC3\xBCro", "b.example"}).status, 0);
    EXPECT_EQ(set({"OFFICE", "10.0.0.2"}).status, 0);
    // The rule of the pane's sheet, which holds while two-way communication is on.
    EXPECT_THAT(set({"Office", "fe80::1"}).errors, HasSubstr("invalid IP Address or DNS Name"));
    EXPECT_THAT(set({"Office", ""}).errors, HasSubstr("must be assigned"));
    EXPECT_EQ(set({"Lab", "fe80::1"}).status, 0);
    EXPECT_EQ(runTool({"address", "remove", "--file", file, "Lab"}).status, 0);
    EXPECT_EQ(tests::runPython("import plistlib, sys\n"
                               "print(ascii(plistlib.load(open(sys.argv[1], 'rb'))))",
                               {file}),
              "['Office', '10.0.0.2', True, '2', '----- Data End -----', "
              "'B\\xfcro', 'b.example', False, '2', '----- Data End -----']\n");
    const auto printers = runToolForJson({"address", "list", "--file", file}).at("printers");
    ASSERT_EQ(printers.size(), 2U);
    EXPECT_EQ(printers[0].dump(),
              R"({"address":"10.0.0.2","blocks":[],"format":"2","name":"Office","twoWay":true})");

    EXPECT_EQ(runTool({"address", "remove", "--file", file, "nobody"}).status, 1);
    EXPECT_EQ(runTool({"address", "remove", "--file", file, "office"}).status, 0);
    EXPECT_EQ(runTool({"address", "list", "--file", file}).output, "B\xC3\xBCro: b.example\n");
}

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
