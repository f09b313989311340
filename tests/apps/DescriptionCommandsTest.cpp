// SPDX-License-Identifier: Apache-2.0
#include "platform/SecretMemory.h"
#include "tests/apps/Tool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

// The output of show, lint and check for descriptions and settings.

namespace torka::tests {

namespace {

using Json = nlohmann::json;

TEST(ShowCommand, DumpsOfTheSamplesAreTheReviewedOnes) {
    for (const std::string name : {"torka-production", "torka-production-ja", "torka-defects"}) {
        const CommandResult result = runTool({"show", samplePath(name + ".ppd"), "--json"});
        EXPECT_EQ(result.status, 0);
        const std::string golden = readFile(TORKA_SOURCE_DIR "/tests/apps/golden/" + name + ".json");
        EXPECT_TRUE(result.output == golden) << name << ": compare with torka show --json";
    }
}

TEST(ShowCommand, MarksHiddenPagesAndGroups) {
    const TemporaryFolder folder;
    const std::string ppd =
        folder.Write("hidden.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANPropPage P/P:\n"
                                   "*%ZANGroupName S/S: True\n*%ZANParent S/P: True|Scrollpane\n"
                                   "*%ZANGroupName R/R:\n*%ZANParent R/S: True|Rolldown\n");
    const std::string text = runTool({"show", ppd}).output;
    // Names of groups end with a blank.
    EXPECT_NE(text.find("Page P: P hidden\n  Scroll pane S: S \n    Roll-down R: R  hidden\n"), text.npos)
        << text;
    const Json page = runToolForJson({"show", ppd})["pages"][0];
    EXPECT_EQ(page["visible"], false);
    EXPECT_EQ(page["scrollPane"]["visible"], true);
    EXPECT_EQ(page["scrollPane"]["rollDowns"][0]["visible"], false);
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

TEST(LintCommand, WarningsAloneAreGoodUnlessStrictAndCompilersFormIsOneLineEach) {
    const std::string ppd = samplePath("torka-production.ppd");
    EXPECT_EQ(runTool({"lint", ppd}).status, 0);
    EXPECT_EQ(runTool({"lint", ppd, "--strict"}).status, 1);
    EXPECT_EQ(runTool({"lint", samplePath("torka-defects.ppd")}).status, 1);

    const TemporaryFolder folder;
    const std::string small = folder.Write("small.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANProppage P/P: True\n");
    const std::string lines = runTool({"lint", small, "--format=gcc"}).output;
    EXPECT_TRUE(lines.starts_with(small +
                                  ":1: error: 25 PPDErr_NoPropertyPages; declare at least one "
                                  "visible page [PPDErr_NoPropertyPages]\n" +
                                  small + ":1: error: 26 "))
        << lines;
    EXPECT_TRUE(lines.ends_with(small + ":2: warning: *%ZANProppage: no reader knows this keyword, and the "
                                        "line is lost; did you mean \"*%ZANPropPage\"?; correct the keyword "
                                        "[misspeltKeyword]\n"))
        << lines;
    EXPECT_EQ(std::ranges::count(lines, '\n'), 6) << lines;
    std::filesystem::create_directories(folder / "B/Contents");
    folder.Write(
        "B/Contents/PrinterList.plist",
        "<plist version=\"1.0\"><dict><key>PCFILENAME</key><array><string>trkprja.ppd</string></array>"
        "</dict></plist>");
    const auto hasUnlisted = [&](const std::string& name) {
        return runTool({"lint", samplePath(name), "--bundle", folder / "B"}).output.find("does not list") !=
               std::string::npos;
    };
    EXPECT_TRUE(hasUnlisted("torka-production.ppd"));
    EXPECT_FALSE(hasUnlisted("torka-production-ja.ppd"));
    EXPECT_EQ(runTool({"lint", ppd, "--bundle", folder / "absent"}).status, 2);
}

TEST(CheckCommand, TellsConflictsAlternativesAndWhatIsForbidden) {
    const TemporaryFolder folder;
    const std::string ppd = folder.Write("small.ppd", R"(*PPD-Adobe: "4.3"
*%ZANFlags *Tray: Dynamic
*OpenUI *Tray/Tray: PickOne
*DefaultTray: Upper
*Tray Upper: ""
*Tray Lower: ""
*Tray Side: ""
*CloseUI: *Tray
*%ZANFlags *Stock: Dynamic
*OpenUI *Stock/Stock: PickOne
*DefaultStock: Plain
*Stock Plain: ""
*Stock Card: ""
*CloseUI: *Stock
*UIConstraints: *Stock Card *Tray Upper
*UIConstraints: *Tray Upper *Stock Card
)");
    const Json free = runToolForJson({"check", ppd, "Stock=Plain"});
    EXPECT_TRUE(free["conflicts"].empty());
    EXPECT_EQ(free["constrained"], Json::parse(R"([{"key":"*Stock","option":"Card"}])"));

    const Json conflict = runToolForJson({"check", ppd, "*Stock=Card", "--solve"}, 1);
    EXPECT_EQ(conflict["conflicts"], Json::parse(R"([{"key":"*Tray","option":"Upper"}])"));
    EXPECT_EQ(conflict["alternatives"],
              Json::parse(R"([{"key":"*Tray","option":"Side"},{"key":"*Tray","option":"Lower"}])"));
    EXPECT_EQ(conflict["constrained"],
              Json::parse(R"([{"key":"*Tray","option":"Upper"},{"key":"*Stock","option":"Card"}])"));
    EXPECT_TRUE(conflict["solved"].get<bool>());
    EXPECT_EQ(conflict["changes"],
              Json::parse(R"([{"key":"*Stock","option":"Card"},{"key":"*Tray","option":"Side"}])"));
}

TEST(CheckCommand, ASolutionInstallsNoHardware) {
    const std::string ppd = samplePath("torka-production.ppd");
    // Without the trimmer the fore-edge cannot be trimmed, whatever else is chosen.
    const Json trim = runToolForJson({"check", ppd, "QVTrimSides=Face", "--solve"}, 1);
    EXPECT_EQ(trim["conflicts"], Json::parse(R"([{"key":"*QVTrimmerUnit","option":"False"}])"));
    EXPECT_FALSE(trim["solved"].get<bool>());
    EXPECT_TRUE(runToolForJson({"check", ppd, "QVTrimSides=Face", "QVTrimmerUnit=True", "--solve"})["solved"]
                    .get<bool>());
}

} // namespace

} // namespace torka::tests
