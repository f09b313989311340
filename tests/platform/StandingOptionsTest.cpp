// SPDX-License-Identifier: Apache-2.0
#include "platform/cups/StandingOptions.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace torka::platform {
namespace {

// Without the rights of root, as a person who has set up the file with sudo.
class NobodysRights {
public:
    NobodysRights() { isChanged = ::geteuid() == 0 && ::seteuid(65534) == 0; }
    NobodysRights(const NobodysRights&) = delete;
    NobodysRights& operator=(const NobodysRights&) = delete;
    ~NobodysRights() { EXPECT_TRUE(!isChanged || ::seteuid(0) == 0); }

private:
    bool isChanged = false;
};

TEST(StandingOptions, AreNotReplacedWhenTheFileCannotBeRead) {
    const tests::TemporaryFolder folder;
    const std::string others = "Default Office sides=two-sided-long-edge\n";
    const std::filesystem::path file = folder.Write("lpoptions", others);
    ::chmod(folder.Path().c_str(), 0777);
    for (const auto& [mode, isRead] : {std::pair{0000U, false}, std::pair{0644U, true}}) {
        ::chmod(file.c_str(), mode);
        {
            const NobodysRights rights;
            const Result<void> changed = changeStandingOptions(file, "Press", {}, {{"QVStaple", "Top"}});
            EXPECT_EQ(bool(changed), isRead);
            EXPECT_EQ(changed ? "" : changed.Why().Line(),
                      isRead ? "" : file.string() + ": Permission denied");
            EXPECT_EQ(bool(standingOptions(file, "Press")), isRead);
        }
        ::chmod(file.c_str(), 0644);
        EXPECT_EQ(tests::readFile(file), others + (isRead ? "Dest Press QVStaple=Top\n" : ""));
    }
}

} // namespace
} // namespace torka::platform
