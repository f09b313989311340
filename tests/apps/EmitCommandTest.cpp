// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

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

std::vector<std::string> textsAt(const Json& entries, int site) {
    std::vector<std::string> texts;
    for (const Json& entry : entries) {
        if (entry["site"] == site) {
            texts.push_back(entry["text"]);
        }
    }
    return texts;
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

TEST(EmitCommand, SettingsStandInTheirFixedOrder) {
    const Json entries = runToolForJson({"emit", samplePath("torka-production.ppd"), "PageSize=A4",
                                         "QVScale=85", "QVPrintSize=A4"})["entries"];
    // The entries of site -9, the suppressed keywords, all come first.
    std::size_t suppressed = 0;
    while (entries[suppressed]["site"] == -9) {
        EXPECT_NE(entries[suppressed]["text"], "*PageSize");
        ++suppressed;
    }
    EXPECT_EQ(textsAt(entries, -9).size(), suppressed);
    const std::vector<std::string> pageSize = textsAt(entries, 70);
    ASSERT_EQ(pageSize.size(), 1U);
    EXPECT_TRUE(pageSize[0].starts_with("%%BeginFeature: *PageSize A4\n"));

    const std::vector<std::string> setup = textsAt(entries, 81);
    const auto place = [&setup](const std::string& start) {
        const auto found = std::ranges::find_if(
            setup, [&start](const std::string& text) { return text.starts_with(start); });
        EXPECT_NE(found, setup.end()) << start;
        return found;
    };
    EXPECT_LT(place("%%BeginFeature: *QVSourceAppType TORKA\n\n%%EndFeature\n"),
              place("%%BeginFeature: *QVDuplex"));
    EXPECT_LT(place("%%BeginFeature: *QVDuplex"), place("%%BeginFeature: *QVScale 85\n userdict "));
    EXPECT_LT(place("%%BeginFeature: *QVScale 85"),
              place("%%BeginFeature: *QVPrintSize SameAsPageSize\n\n%%EndFeature\n"));
    EXPECT_NE(place("%%BeginFeature: *QVScale 85")->find("[ 0.85 ]"), std::string::npos);

    const std::size_t count = entries.size();
    EXPECT_EQ(entries[count - 3], Json({{"site", 501}, {"text", "%%ZANDriver\n"}}));
    EXPECT_EQ(entries[count - 2]["site"], 71);
    EXPECT_EQ(entries[count - 1], Json({{"site", 501}, {"text", "%%QVUTF8_Version: 6 \n"}}));
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

TEST(EmitCommand, TellsNotesThatBreakARuleAndRefusesThemWhenStrict) {
    const TemporaryFolder folder;
    const std::string ticket = folder / "ticket.plist";
    const std::string ppd = samplePath("torka-production.ppd");
    const std::string told = "torka: *QVDSPassword must have at least 4 characters\n"
                             "torka: *QVAccountId must not be empty\n"
                             "torka: *QVAccountName must not hold a comma\n";
    for (const bool isStrict : {true, false}) {
        std::vector<std::string> command = {
            "emit", ppd, "QVAccountId=", "QVAccountName=Smith, J", "QVDSPassword=471", "--ticket", ticket};
        if (isStrict) {
            command.emplace_back("--strict");
        }
        const CommandResult result = runTool(command);
        EXPECT_EQ(result.errors, told);
        EXPECT_EQ(result.status, isStrict ? 1 : 0);
        EXPECT_EQ(result.output.empty(), isStrict);
        EXPECT_EQ(std::filesystem::exists(ticket), !isStrict);
    }
    EXPECT_EQ(runTool({"emit", ppd, "--strict", "--ticket", ticket}).status, 0);
}

// A note whose text the description's encoding cannot hold leaves empty, and that is said: without the text
// of a secret. A text that it holds leaves in its bytes.
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

    const std::string ticket = folder / "ticket.plist";
    EXPECT_EQ(runTool({"emit", ppd, "Notes2=\u7530\\\u00a5~", "--ticket", ticket}).status, 0);
    EXPECT_EQ(runPython(R"(
import plistlib, sys
flat = plistlib.load(open(sys.argv[1], 'rb'))
print([d.decode('shift_jis') for d in flat[1::2] if d.startswith(b'%%ZANCustom2')] == ['%%ZANCustom2: \u7530\\\\~\n'])
)",
                        {ticket}),
              "True\n");
}

TEST(EmitCommand, SettingsInConflictAreNamedAndStrictRefusesThem) {
    for (const bool isStrict : {false, true}) {
        std::vector<std::string> command = {"emit", samplePath("torka-production.ppd"), "PageSize=A5",
                                            "QVFoldStyle=Half"};
        if (isStrict) {
            command.emplace_back("--strict");
        }
        const CommandResult result = runTool(command);
        EXPECT_NE(result.errors.find("*PageSize=A5 does not go together with *QVFoldStyle=Half\n"),
                  std::string::npos)
            << result.errors;
        EXPECT_EQ(result.status, isStrict ? 1 : 0);
        EXPECT_EQ(result.output.empty(), isStrict);
    }
}

TEST(EmitCommand, CustomSizesAreRoundedOnlyWhenTheDescriptionAsks) {
    const Json rounded =
        runToolForJson({"emit", samplePath("torka-production.ppd"), "QVPrintSize=CustomPrintSize",
                        "CustomPrintSize=595.4 841.6"})["entries"];
    const std::vector<std::string> setup = textsAt(rounded, 81);
    EXPECT_NE(std::ranges::find(setup,
                                "%%BeginFeature: *CustomPrintSize 595.00 842.00\n   userdict "
                                "/RMXZANsetpageproperties known\n   {<< /RMXsetPrintSize [ 595.00 842.00 "
                                "0 0 1 ] >> RMXZANsetpageproperties} if\n%%EndFeature\n"),
              setup.end());
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
    const std::string ppd = folder.Write(
        "long.ppd",
        "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1.0\"\n*LanguageVersion: English\n"
        "*LanguageEncoding: ISOLatin1\n*PCFileName: \"T.PPD\"\n*Manufacturer: \"T\"\n*Product: \"(T)\"\n"
        "*ModelName: \"T\"\n*ShortNickName: \"T\"\n*NickName: \"T\"\n*PSVersion: \"(3010.000) 1\"\n"
        "*%ZANPropPage Page/Page: True\n*%ZANGroupName Pane/Pane: True\n*%ZANParent Pane/Page: "
        "True|Scrollpane\n"
        "*%ZANGroupName Group/Group: True\n*%ZANParent Group/Pane: True|Rolldown\n" +
            option("QVLong", longCode) + option("QVShort", "(short) =") +
            "*OpenUI *PageSize: PickOne\n*DefaultPageSize: A4\n*PageSize A4: \"\"\n*CloseUI: *PageSize\n"
            "*OpenUI *PageRegion: PickOne\n*DefaultPageRegion: A4\n*PageRegion A4: \"\"\n*CloseUI: "
            "*PageRegion\n"
            "*DefaultImageableArea: A4\n*ImageableArea A4: \"0 0 595 842\"\n"
            "*DefaultPaperDimension: A4\n*PaperDimension A4: \"595 842\"\n");
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
    const std::vector<std::string> suppressed = textsAt(emitted["entries"], -9);
    EXPECT_NE(std::ranges::find(suppressed, "*QVShort"), suppressed.end());
    EXPECT_EQ(std::ranges::find(suppressed, "*QVLong"), suppressed.end());
    EXPECT_EQ(runCommand({"gs", "-q", "-dBATCH", "-dNOPAUSE", "-dSAFER", "-sDEVICE=bbox", output}).output,
              "short\nlong\n");
    EXPECT_FALSE(runToolForJson({"emit", ppd, "QVShort=Yes"}).contains("leftOut"));
}

TEST(EmitCommand, SplicedDocumentRunsAndShowsTheSettings) {
    const TemporaryFolder folder;
    for (const std::string document : {"brochure.ps", "plain.ps"}) {
        const std::string output = folder / document;
        const Json emitted = runToolForJson({"emit", samplePath("torka-production.ppd"), "PageSize=A5",
                                             "--splice", samplePath(document), "--output", output});
        ASSERT_FALSE(emitted.is_discarded());
        const CommandResult boxes = runCommand({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE",
                                                "-sDEVICE=ppmraw", "-r72", "-sOutputFile=%stdout", output});
        EXPECT_EQ(boxes.status, 0) << boxes.errors;
        EXPECT_EQ(boxes.errors, "");
        // A5 is 420 by 595 points. The header of the picture holds its size.
        EXPECT_EQ(boxes.output.substr(0, 2), "P6");
        EXPECT_NE(boxes.output.substr(0, 80).find("420 595"), std::string::npos)
            << boxes.output.substr(0, 80);
    }
}

TEST(EmitCommand, WatermarkIsPrintedInItsColour) {
    const TemporaryFolder folder;
    const std::string output = folder / "marked.ps";
    const auto magentaOn = [&](const std::string& definition, const std::string& orientation) {
        runToolForJson({"emit", samplePath("torka-production.ppd"), "--watermark", definition,
                        "--orientation", orientation, "--splice", samplePath("plain.ps"), "--output",
                        output});
        const CommandResult printed = runCommand({"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE",
                                                  "-sDEVICE=ppmraw", "-r72", "-sOutputFile=%stdout", output});
        EXPECT_EQ(printed.status, 0) << printed.errors;
        // Two pixels of magenta, red, green and blue.
        return printed.output.find(std::string("\xFF\0\xFF\xFF\0\xFF", 6)) != std::string::npos;
    };
    EXPECT_TRUE(magentaOn("0,0,0,255,0,255,0,0,0,450,0,0,60,Helvetica,LAST, NOT LEAST", "2"));
    EXPECT_FALSE(magentaOn("0,0,0,255,0,255,0,0,0,450,0,0,60,Helvetica,", "2"));
    EXPECT_EQ(runTool({"emit", samplePath("torka-production.ppd"), "--orientation", "5"}).status, 2);
}

} // namespace

} // namespace torka::tests
