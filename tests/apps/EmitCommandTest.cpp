// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"
#include "tests/support/SmallPPD.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

// emit and ticket: from settings to a ticket, and from a ticket into a document that Ghostscript runs.

namespace torka::tests {

namespace {

using Json = nlohmann::json;

// Reads a ticket with Python's plistlib and returns it in the tool's form.
Json ticketByPython(const std::string& path) {
    return Json::parse(runPython(R"(
import json, plistlib, sys
flat = plistlib.load(open(sys.argv[1], 'rb'))
print(json.dumps([{"site": s, "text": d.decode("utf-8")} for s, d in zip(flat[::2], flat[1::2])]))
)",
                                 {path}));
}

TEST(EmitCommand, TicketIsWhatWasPrintedWhoeverReadsIt) {
    const TemporaryFolder folder;
    const std::string ticket = folder / "ticket.plist";
    const Json emitted =
        runToolForJson({"emit", samplePath("torka-production.ppd"), "PageSize=A4", "--ticket", ticket});
    ASSERT_GT(emitted["entries"].size(), 100U);
    EXPECT_EQ(ticketByPython(ticket), emitted["entries"]);
    EXPECT_EQ(runToolForJson({"ticket", ticket})["entries"], emitted["entries"]);

    // On older system versions the tool writes the ticket itself, readable by everybody.
    std::filesystem::create_directory(folder / "tmp");
    const CommandResult older =
        runCommand({"env", "TORKA_SYSTEM_ROOT=" + folder.Path().string(), TORKA_BINARY_DIR "/bin/torka",
                    "emit", samplePath("torka-production.ppd"), "PageSize=A4", "--os-minor", "6", "--json"});
    EXPECT_EQ(older.status, 0) << older.errors;
    std::size_t files = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder / "tmp")) {
        if (file.path().extension() == ".ppd") {
            continue; // entries of the description's copy
        }
        ++files;
        EXPECT_TRUE(file.path().filename().string().starts_with("Torka.temp"));
        EXPECT_EQ(file.status().permissions(), std::filesystem::perms(0666));
        EXPECT_EQ(ticketByPython(file.path()), Json::parse(older.output)["entries"]);
    }
    EXPECT_EQ(files, 1U);
}

TEST(EmitCommand, SavedSettingsGiveTheSameTicketAgainAndKeepNoSecret) {
    const TemporaryFolder folder;
    const std::string saved = folder / "saved.plist";
    const std::string again = folder / "again.plist";
    const std::string ppd = samplePath("torka-production.ppd");
    const CommandResult first =
        runTool({"emit", ppd, "PageSize=A4", "QVScale=85", "Notes1=a note", "QVDSPassword=4711",
                 "QVUserPassword=secret", "--two-way", "on", "--save-settings", saved});
    const CommandResult second = runTool({"emit", ppd, "QVDSPassword=4711", "QVUserPassword=secret",
                                          "--settings", saved, "--two-way", "on", "--save-settings", again});
    EXPECT_EQ(first.output, second.output);
    EXPECT_EQ(readFile(saved), readFile(again));
    EXPECT_EQ(std::filesystem::status(saved).permissions(), std::filesystem::perms(0600));
    const std::string list = runPython("import plistlib, sys\n"
                                       "s = plistlib.load(open(sys.argv[1], 'rb'))\n"
                                       "print(s['*PageSize'], s['*QVScale'], s['*Notes1'], s['.MMKey'],\n"
                                       "      '*QVDSPassword' in s, '*QVUserPassword' in s, '*Resume' in s)",
                                       {saved});
    EXPECT_EQ(list, "A4 85 a note 0 False False False\n");
    EXPECT_EQ(readFile(saved).find("secret"), std::string::npos);
}

TEST(EmitCommand, StrictRefusesWhatIsOtherwiseOnlyTold) {
    const TemporaryFolder folder;
    const std::string ticket = folder / "ticket.plist";
    const std::string ppd = samplePath("torka-production.ppd");
    const std::pair<std::vector<std::string>, std::string> rows[] = {
        {{"QVAccountId=", "QVAccountName=Smith, J", "QVDSPassword=471"},
         "torka: *QVDSPassword must have at least 4 characters\n"
         "torka: *QVAccountId must not be empty\n"
         "torka: *QVAccountName must not hold a comma\n"},
        {{"PageSize=A5", "QVFoldStyle=Half"},
         "torka: *PageSize=A5 does not go together with *QVFoldStyle=Half\n"},
        {{"PageSize=A4"}, ""}};
    for (const auto& [settings, told] : rows) {
        for (const bool isStrict : {true, false}) {
            std::vector<std::string> command = {"emit", ppd, "--ticket", ticket};
            command.insert(command.end(), settings.begin(), settings.end());
            if (isStrict) {
                command.emplace_back("--strict");
            }
            std::filesystem::remove(ticket);
            const CommandResult result = runTool(command);
            EXPECT_EQ(result.errors, told);
            const bool isRefused = isStrict && !told.empty();
            EXPECT_EQ(result.status, isRefused ? 1 : 0);
            EXPECT_EQ(result.output.empty(), isRefused);
            EXPECT_EQ(std::filesystem::exists(ticket), !isRefused);
        }
    }
}

// A note whose text the description's encoding cannot hold leaves empty, and that is said: without the text
// of a secret.
TEST(EmitCommand, NamesNotesThatTheEncodingCannotHold) {
    const TemporaryFolder folder;
    const std::string ppd = samplePath("torka-production-ja.ppd"); // Shift_JIS, UTF-8 level 2
    const std::string settings = folder.Write(
        "settings.plist", "<plist version=\"1.0\"><dict><key>*Notes2</key><string>\u00e9</string>"
                          "<key>*QVUserAuthName</key><string>\u00fc</string></dict></plist>");
    const std::string keys = samplePath("FieldKeys.plist");
    const CommandResult lost = runTool({"emit", ppd, "Notes2=5 \u20ac \u20ac\u00df", "Resume=1\u20ac345",
                                        "--json", "--keys", keys, "--settings", settings});
    EXPECT_EQ(lost.status, 1);
    EXPECT_EQ(lost.errors,
              "torka: *QVUserAuthName is left out of the job: Shift_JIS, the encoding of its text, does "
              "not have some of its characters\n"
              "torka: *Notes2 is left out of the job: Shift_JIS, the encoding of its text, does not have "
              "\"\u20ac\u00df\"\n"
              "torka: *Resume is left out of the job: Shift_JIS, the encoding of its text, does not have "
              "some of its characters\n");
    const Json emitted = Json::parse(lost.output);
    EXPECT_EQ(emitted["leftOut"].size(), 3U);
    EXPECT_EQ(emitted["entries"].dump().find("ZANCustom2"), std::string::npos);
}

// A choice whose code is too long for a ticket is named, and the system's own code prints it. The text of a
// note is no choice.
TEST(EmitCommand, WhatHasNoRoomIsLeftToTheSystem) {
    const TemporaryFolder folder;
    const std::string filler = "%" + std::string(120, 'x') + "\n";
    std::string longCode = "(long) =\n";
    for (int i = 0; i < 9; ++i) {
        longCode += filler;
    }
    const auto option = [](const std::string& key, const std::string& code) {
        return "*%ZANFlags *" + key + ":\n*%ZANGroup *" + key + ": Group\n*OpenUI *" + key + "/" + key +
               ": PickOne\n*OrderDependency: 20 DocumentSetup *" + key + "\n*Default" + key + ": No\n*" +
               key + " No/No: \"(" + key + " no) =\"\n*" + key + " Yes/Yes: \"" + code +
               "\"\n*End\n*CloseUI: *" + key + "\n";
    };
    const std::string ppd =
        folder.Write("long.ppd", smallPPD + smallGroup + option("QVLong", longCode) +
                                     option("QVShort", "(short) =") + onlySheet("595 842"));
    const CommandResult printed =
        runCommand({"env", "PPD=" + ppd, "/usr/lib/cups/filter/pstops", "1", "user", "title", "1",
                    "QVLong=Yes QVShort=No",
                    folder.Write("in.ps", "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n"
                                          "%%Page: 1 1\nshowpage\n%%EOF\n")});
    ASSERT_EQ(printed.status, 0) << printed.errors;
    const std::string output = folder / "out.ps";
    const CommandResult result = runTool({"emit", ppd, "QVLong=Yes", "QVShort=Yes", "--json", "--splice",
                                          folder.Write("system.ps", printed.output), "--output", output});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find("*QVLong is left out of the job"), std::string::npos) << result.errors;
    const Json emitted = Json::parse(result.output);
    EXPECT_EQ(emitted["leftOut"].size(), 1U);
    EXPECT_EQ(emitted["leftOut"][0]["keyword"], "*QVLong");
    for (const auto& [keyword, isSuppressed] : {std::pair{"*QVShort", 1}, {"*QVLong", 0}}) {
        const Json entry{{"site", -9}, {"text", keyword}};
        EXPECT_EQ(std::ranges::count(emitted["entries"], entry), isSuppressed) << keyword;
    }
    EXPECT_EQ(runCommand({"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", "-sDEVICE=bbox", output}).output,
              "short\nlong\n");
    EXPECT_FALSE(runToolForJson({"emit", ppd, "QVShort=Yes"}).contains("leftOut"));
}

} // namespace

} // namespace torka::tests
