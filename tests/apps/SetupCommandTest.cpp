// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace torka::tests {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::Not;

// A real shell and systemd's own reader judge the files. Both find values of other programs, and the shell
// reads its file twice.
TEST(SetupCommand, SwitchesThePaneOnBesideOtherValuesAndOff) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "writes what root writes";
    }
    const TemporaryFolder folder;
    const fs::path session = folder / "etc/X11/Xsession.d/90torka";
    const fs::path environment = folder / "etc/environment.d/90-torka.conf";
    fs::create_directories(session.parent_path());
    setenv("TORKA_SYSTEM_ROOT", folder.Path().c_str(), 1);
    const auto setup = [](std::vector<std::string> more) {
        more.insert(more.begin(), {"setup", "applications"});
        return runTool(more);
    };
    EXPECT_THAT(setup({}).output, HasSubstr("have no pane"));
    EXPECT_EQ(setup({"on"}).status, 0);
    EXPECT_THAT(readFile(environment), Not(HasSubstr("GTK")));
    ASSERT_EQ(setup({"on", "--gtk"}).status, 0);
    EXPECT_THAT(setup({"show"}).output, HasSubstr("have the pane for everybody from the next login on"));

    const std::string plugIns = fs::path(TORKA_QT_PLUGINS).lexically_normal().string();
    const std::string expected = "other,torka|/other:" + plugIns + "|1|portals\n";
    EXPECT_EQ(
        runCommand({"sh", "-euc",
                    "unset GDK_DEBUG GTK_USE_PORTAL; QT_QPA_GENERIC_PLUGINS=other; QT_PLUGIN_PATH=/other;"
                    ". \"$1\"; . \"$1\"; unset x;"
                    "echo \"$QT_QPA_GENERIC_PLUGINS|$QT_PLUGIN_PATH|$GTK_USE_PORTAL|$GDK_DEBUG\"",
                    "sh", session.string()})
            .output,
        expected);
    const std::string reader =
        "/usr/lib/systemd/user-environment-generators/30-systemd-environment-d-generator";
    if (fs::exists(reader)) {
        fs::create_directories(folder / "config/environment.d");
        fs::copy_file(environment, folder / "config/environment.d/90-torka.conf");
        EXPECT_THAT(runCommand({"env", "-i", "HOME=" + folder.Path().string(),
                                "XDG_CONFIG_HOME=" + (folder / "config").string(),
                                "QT_QPA_GENERIC_PLUGINS=other", "QT_PLUGIN_PATH=/other", reader})
                        .output,
                    AllOf(HasSubstr("QT_QPA_GENERIC_PLUGINS=other,torka\n"),
                          HasSubstr("QT_PLUGIN_PATH=/other:" + plugIns + "\n"),
                          HasSubstr("GDK_DEBUG=portals\n")));
    }

    // A person cannot take back what root has switched on.
    fs::permissions(folder.Path(), fs::perms(0755));
    EXPECT_THAT(runCommand({"setpriv", "--reuid=65534", "--clear-groups", "env",
                            "XDG_CONFIG_HOME=" + (folder / "nobody").string(), TORKA_BINARY_DIR "/bin/torka",
                            "setup", "applications", "off"})
                    .output,
                HasSubstr("It stays on for everybody"));
    EXPECT_TRUE(fs::exists(environment));

    EXPECT_EQ(setup({"off"}).status, 0);
    EXPECT_FALSE(fs::exists(session) || fs::exists(environment));
    EXPECT_EQ(setup({"off"}).output, "It was off.\n");
    EXPECT_EQ(setup({"maybe"}).status, 2);
    unsetenv("TORKA_SYSTEM_ROOT");
}

} // namespace
} // namespace torka::tests
