// SPDX-License-Identifier: Apache-2.0
#include "tests/support/Neighbours.h"

#include "tests/support/TestSupport.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <sstream>

namespace torka::tests {

namespace {

constexpr const char* variable = "TORKA_TEST_NEIGHBOUR"; // the script's folder
constexpr int noSuchMachine = 99;

} // namespace

bool hasNeighbour() { return std::getenv(variable) != nullptr; }

void runWithNeighbour(const std::vector<std::string>& services, const std::string& program) {
    const TemporaryFolder folder;
    std::string lines;
    for (const std::string& service : services) {
        lines += service + "\n";
    }
    folder.Write("services", lines);
    if (!program.empty()) {
        folder.Write("program", program);
    }
    const testing::TestInfo& test = *testing::UnitTest::GetInstance()->current_test_info();
    const CommandResult result = runCommand(
        {"unshare", "--net", "--mount", "env", std::string(variable) + "=" + folder.Path().string(), "sh",
         TORKA_SOURCE_DIR "/tests/support/neighbours.sh", folder.Path().string(),
         std::filesystem::read_symlink("/proc/self/exe").string(),
         std::string("--gtest_filter=") + test.test_suite_name() + "." + test.name()});
    if (result.status == noSuchMachine || result.status == -1 || result.errors.starts_with("unshare: ")) {
        GTEST_SKIP() << "no two machines can be made here: " << result.errors;
    }
    if (result.output.find("[  SKIPPED ]") != std::string::npos) {
        GTEST_SKIP() << result.output;
    }
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
}

void endDaemon() { EXPECT_EQ(runCommand({"avahi-daemon", "--kill"}).status, 0); }

void startDaemon() {
    const CommandResult result =
        runCommand({"avahi-daemon", "--no-drop-root", "--no-chroot", "--no-rlimits", "--daemonize"});
    EXPECT_EQ(result.status, 0) << result.errors;
}

std::vector<std::string> namesAsked() {
    std::istringstream text(readFile(std::filesystem::path(std::getenv(variable)) / "asked"));
    std::vector<std::string> names;
    for (std::string name; std::getline(text, name);) {
        names.push_back(name);
    }
    return names;
}

} // namespace torka::tests
