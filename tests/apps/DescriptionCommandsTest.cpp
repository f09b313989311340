// SPDX-License-Identifier: Apache-2.0
#include "platform/SecretMemory.h"
#include "tests/apps/Tool.h"

#include <cups/ppd.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>

// libcups marks its PPD functions as deprecated, but programs still use them.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

// The output of show, lint and check for descriptions and settings.

namespace torka::tests {

namespace {

using Json = nlohmann::json;

struct PpdCloser {
    void operator()(ppd_file_t* ppd) const { ppdClose(ppd); }
};

Json controlOf(const Json& model, const std::string& keyword) {
    for (const Json& control : model["controls"]) {
        if (control["keyword"] == keyword) {
            return control;
        }
    }
    return {};
}

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

// Compares the keywords and texts of all choices with those that libcups reads from the same file, in order.
TEST(ShowCommand, ChoicesAndDefaultsAreThoseOfTheSystemsOwnReader) {
    for (const std::string name : {"torka-production.ppd", "torka-production-ja.ppd"}) {
        const Json model = runToolForJson({"show", samplePath(name)});
        const std::unique_ptr<ppd_file_t, PpdCloser> ppd(ppdOpenFile(samplePath(name).c_str()));
        ASSERT_TRUE(ppd);
        std::size_t compared = 0;
        for (ppd_option_t* option = ppdFirstOption(ppd.get()); option != nullptr;
             option = ppdNextOption(ppd.get())) {
            const Json control = controlOf(model, std::string("*") + option->keyword);
            if (control.is_null() || control["type"] != "popup") {
                continue;
            }
            ++compared;
            EXPECT_EQ(control["name"], option->text) << option->keyword;
            EXPECT_EQ(control["default"], option->defchoice) << option->keyword;
            // libcups adds its own choice "Custom" behind those of the file.
            ASSERT_LE(control["items"].size(), static_cast<std::size_t>(option->num_choices));
            for (std::size_t i = 0; i < control["items"].size(); ++i) {
                EXPECT_EQ(control["items"][i]["keyword"], option->choices[i].choice) << option->keyword;
                EXPECT_EQ(control["items"][i]["name"], option->choices[i].text) << option->keyword;
            }
        }
        EXPECT_GT(compared, 5U);
    }
}

TEST(LintCommand, TellsErrorsAndWarningsWithTheirLines) {
    const Json healthy = runToolForJson({"lint", samplePath("torka-production.ppd")});
    EXPECT_TRUE(healthy["errors"].empty());
    for (const Json& warning : healthy["warnings"]) {
        EXPECT_TRUE(warning["name"] == "requirement" || warning["name"] == "hiddenControls" ||
                    warning["name"] == "oneWayConstraint")
            << warning;
        EXPECT_FALSE(warning["remedy"].get<std::string>().empty());
    }

    const Json defects = runToolForJson({"lint", samplePath("torka-defects.ppd")}, 1);
    std::set<int> codes;
    for (const Json& error : defects["errors"]) {
        codes.insert(error["code"].get<int>());
        EXPECT_GT(error["line"].get<long>(), 0);
        EXPECT_FALSE(error["fatal"].get<bool>());
    }
    EXPECT_EQ(codes,
              (std::set<int>{4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15, 16, 19, 23, 29, 31, 33, 34, 35, 36, 37}));
    EXPECT_GE(defects["warnings"].size(), 10U);
}

TEST(LintCommand, WarningsAloneAreGoodUnlessStrictAndCompilersFormIsOneLineEach) {
    const std::string ppd = samplePath("torka-production.ppd");
    EXPECT_EQ(runTool({"lint", ppd}).status, 0);
    EXPECT_EQ(runTool({"lint", ppd, "--strict"}).status, 1);
    EXPECT_EQ(runTool({"lint", samplePath("torka-defects.ppd")}).status, 1);

    const TemporaryFolder folder;
    const std::string small = folder.Write("small.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANProppage P/P: True\n");
    const CommandResult lines = runTool({"lint", small, "--format=gcc"});
    EXPECT_EQ(lines.output,
              small +
                  ":1: error: 25 PPDErr_NoPropertyPages; declare at least one visible page "
                  "[PPDErr_NoPropertyPages]\n" +
                  small + ":1: error: 26 PPDErr_NoGroups; declare groups and place them [PPDErr_NoGroups]\n" +
                  small + ":1: error: 27 PPDErr_NoControls; define controls [PPDErr_NoControls]\n" + small +
                  ":1: warning: *%QVVersion: there is no *%QVVersion, so that the printer has no pane; add "
                  "*%QVVersion with the controller's version [noMakerVersion]\n" +
                  small +
                  ":1: warning: *PCFileName: there is no *PCFileName, so that the printer has no pane; add "
                  "*PCFileName with a name that the plug-in's PrinterList.plist lists [noFileName]\n" +
                  small +
                  ":2: warning: *%ZANProppage: no reader knows this keyword, and the line is lost; did you "
                  "mean \"*%ZANPropPage\"?; correct the keyword [misspeltKeyword]\n");

    const std::string near =
        folder.Write("near.ppd", "*PPD-Adobe: \"4.3\"\n*%ZANPropPage Page/P: True\n*%ZANGroupName "
                                 "G/G: True\n*%ZANParent G/Pgae: True|Scrollpane\n");
    EXPECT_NE(runTool({"lint", near})
                  .output.find(":4: error: 14 PPDErr_ParentParsingNoParent Pgae; did you mean \"Page\"?"),
              std::string::npos);
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

TEST(Tool, UnusableInputIsStatusTwoWithOneLine) {
    const TemporaryFolder folder;
    const std::string other = folder.Write("other.ppd", "*PPD-Adobe: \"4.2\"\n");
    const std::string text = folder.Write("text.plist", "hello");
    const std::string large = folder.Write("large.ppd", "*PPD-Adobe: \"4.3\"\n");
    std::filesystem::resize_file(large, (std::uintmax_t{256} << 20U) + 1);
    const std::string ppd = samplePath("torka-production.ppd");
    const std::vector<std::vector<std::string>> cases = {
        {},
        {"nonsense"},
        {"show"},
        {"show", folder / "absent.ppd"},
        {"show", folder.Path()},
        {"show", other},
        {"show", large},
        {"lint", folder / "absent.ppd"},
        {"check", ppd, "QVNoSuchOption=1"},
        {"check", ppd, "QVDuplex=Sideways"},
        {"check", ppd, "QVDuplex"},
        {"emit", ppd, "QVUTF8_Version=7"},
        {"emit", ppd, "--splice", samplePath("brochure.ps")},
        {"emit", ppd, "--settings", folder / "absent.plist"},
        {"emit", ppd, "--settings", text},
        {"emit", ppd, "--save-settings", folder / "no/such/folder/s.plist"},
        {"emit", ppd, "--two-way", "perhaps"},
        {"emit", ppd, "--splice", folder / "absent.ps", "--output", folder / "out.ps"},
        {"emit", ppd, "--ticket", folder / "no/such/folder/t.plist"},
        {"ticket", text},
        {"ticket", folder / "absent.plist"},
    };
    for (const auto& arguments : cases) {
        const CommandResult result = runTool(arguments);
        const std::string shown = ::testing::PrintToString(arguments);
        EXPECT_EQ(result.status, 2) << shown;
        EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << shown << result.errors;
        EXPECT_TRUE(result.errors.starts_with("torka: ")) << shown << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "out.ps"));
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

TEST(CheckCommand, AColourTextThatIsNotListedForbidsNothing) {
    const TemporaryFolder folder;
    const std::string ppd = folder.Write("colour.ppd", R"(*PPD-Adobe: "4.3"
*%ZANFlags *QVSimulation: Dynamic
*OpenUI *QVSimulation/Simulation: PickOne
*DefaultQVSimulation: None
*QVSimulation None: ""
*QVSimulation Press: ""
*CloseUI: *QVSimulation
*%ZANFlags *Stock: Dynamic
*OpenUI *Stock/Stock: PickOne
*DefaultStock: Plain
*Stock Plain: ""
*CloseUI: *Stock
*UIConstraints: *QVSimulation Press *Stock Plain
)");
    EXPECT_TRUE(runToolForJson({"check", ppd, "QVSimulation=Own"})["conflicts"].empty());
    EXPECT_FALSE(runToolForJson({"check", ppd, "QVSimulation=Press"}, 1)["conflicts"].empty());
}

} // namespace

} // namespace torka::tests
