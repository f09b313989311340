#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka {
namespace {

using ::testing::HasSubstr;
using ::testing::MatchesRegex;

// Against a real daemon, on loopback in a network namespace: the tool, and the sheet in a Qt application. The
// daemon comes later than the sheet, and goes before it is closed.
TEST(Avahi, ControllersOfARealDaemonAreFound) {
    const tests::TemporaryFolder folder;
    const tests::CommandResult result =
        tests::runCommand({"unshare", "--net", "--mount", "sh",
                           TORKA_SOURCE_DIR "/tests/discovery/network.sh", folder.Path().string(),
                           TORKA_BINARY_DIR "/bin/torka", TORKA_BINARY_DIR "/bin/torka_discovery_probe"});
    if (result.status == 99 || result.status == -1 || result.errors.starts_with("unshare: ")) {
        GTEST_SKIP() << "no local net with a daemon of its own may be made here: " << result.errors;
    }
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(tests::readFile(folder / "without"),
                HasSubstr("controllers cannot be searched for: Avahi: "));
    // One row for each host: of two printers under two names, and of more than are named.
    const std::string office = "(Office Printer, Office hold|Office hold, Office Printer)";
    const std::string flood = "Flood [0-9]+, Flood [0-9]+, Flood [0-9]+, \u2026";
    EXPECT_THAT(tests::readFile(folder / "tool"),
                MatchesRegex("<b>Markup</b>: 10\\.9\\.8\\.7\n" + flood + ": 10\\.9\\.8\\.6\n" + office +
                             ": 127\\.0\\.0\\.1\n"));
    // Sorted by address; the second row is chosen.
    EXPECT_THAT(tests::readFile(folder / "probe"),
                MatchesRegex(
                    "unavailable\n" + flood + "\\|10\\.9\\.8\\.6\n<b>Markup</b>\\|10\\.9\\.8\\.7\n" + office +
                    "\\|127\\.0\\.0\\.1\nfield 10\\.9\\.8\\.7\ngone\nstored 10\\.9\\.8\\.7 two-way\n"));
}

} // namespace
} // namespace torka
