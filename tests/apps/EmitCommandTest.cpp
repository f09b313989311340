// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"
#include "tests/support/SmallPPD.h"

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
        runTool({"emit", samplePath("torka-production.ppd"), "PageSize=A4", "--os-minor", "6", "--json"},
                {"env", "TORKA_SYSTEM_ROOT=" + folder.Path().string()});
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
