// SPDX-License-Identifier: Apache-2.0
#include "platform/SecretMemory.h"
#include "tests/apps/Tool.h"

namespace torka::tests {

namespace {

TEST(ShowCommand, DumpsOfTheSamplesAreTheReviewedOnes) {
    for (const std::string name : {"torka-production", "torka-production-ja", "torka-defects"}) {
        const CommandResult result = runTool({"show", samplePath(name + ".ppd"), "--json"});
        EXPECT_EQ(result.status, 0);
        const std::string golden = readFile(TORKA_SOURCE_DIR "/tests/apps/golden/" + name + ".json");
        EXPECT_TRUE(result.output == golden) << name << ": compare with torka show --json";
    }
}

// 250,000 requirements in 60 MB of JSON: as a tree they would take several times as much.
TEST(ShowCommand, ALongDocumentIsPrintedPieceByPiece) {
    if (platform::hasAddressSanitizer) {
        GTEST_SKIP() << "a sanitizer needs more address space than any limit here";
    }
    std::string text = "*PPD-Adobe: \"4.3\"\n";
    for (const std::string key : {"*A", "*B"}) {
        text += "*%ZANFlags " + key + ": \n*OpenUI " + key + "/x: PickOne\n";
        for (int i = 0; i < 500; ++i) {
            text += key + " Choice" + std::to_string(i) + "/x: \"\"\n";
        }
        text += "*CloseUI: " + key + "\n";
    }
    const TemporaryFolder folder;
    const CommandResult result = runCommand(
        {"sh", "-c", "ulimit -v 120000 && \"$0\" show --json \"$1\" | tail -c 2000",
         TORKA_BINARY_DIR "/bin/torka", folder.Write("long.ppd", text + "*%ZANUIRequires: *A *B\n")});
    EXPECT_NE(result.output.find("\"requiredOption\": \"Choice499\"\n    }\n  ],\n  \"errors\": ["),
              std::string::npos)
        << result.errors << result.output;
}

} // namespace

} // namespace torka::tests
