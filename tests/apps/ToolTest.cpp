// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"
#include "platform/SecretMemory.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

// What holds for every command: one line for a failure, no control characters, secrets that need no command
// line. scripts/check-manual looks at --help and --version of each.

namespace torka {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;
using tests::runTool;
using tests::samplePath;
using Arguments = std::vector<std::string>;

const std::string sample = samplePath("torka-production.ppd");

void expectOneLine(const tests::CommandResult& result, const Arguments& arguments) {
    EXPECT_EQ(result.status, 2) << testing::PrintToString(arguments);
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
    EXPECT_THAT(result.errors, StartsWith("torka: ")) << testing::PrintToString(arguments);
}

TEST(Tool, SaysInOneLineWhatItCannotUse) {
    const std::string name(300, 'n');
    const std::string below = sample + "/below"; // nobody can look there
    for (const std::string& bad : {name, below}) {
        for (const Arguments& arguments : {Arguments{"show", bad},
                                           {"lint", bad},
                                           {"lint", sample, "--bundle", bad},
                                           {"diff", sample, bad},
                                           {"check", bad},
                                           {"emit", sample, "--keys", bad},
                                           {"emit", sample, "--settings", bad},
                                           {"emit", sample, "--save-settings", bad},
                                           {"emit", sample, "--ticket", bad},
                                           {"emit", sample, "Notes1=@" + bad},
                                           {"ticket", bad},
                                           {"print", "-d", "q", bad},
                                           {"record", "list", bad},
                                           {"record", "put", bad, "QVName"},
                                           {"serverdata", bad},
                                           {"module", "run", "--module", bad, "--ppd", sample},
                                           {"notes", "decrypt", "00", "--keys", bad},
                                           {"ping", bad},
                                           {"address", "list", "--file", bad},
                                           {"address", "set", "--force", "--file", bad, "q", "a"},
                                           {"queue", "add", bad, "torkasink:/", sample},
                                           {"queue", "add", "q", "torkasink:/", bad}}) {
            expectOneLine(runTool(arguments), arguments);
        }
    }
    const tests::TemporaryFolder folder;
    const std::string text = folder.Write("text.plist", "hello");
    const std::string large = folder.Write("large.ppd", "*PPD-Adobe: \"4.3\"\n");
    std::filesystem::resize_file(large, (std::uintmax_t{256} << 20U) + 1);
    for (const Arguments& arguments :
         {Arguments{},
          {"nonsense"},
          {"nonsense", "--help"},
          {"show"},
          {"show", folder.Path()},
          {"show", folder.Write("other.ppd", "*PPD-Adobe: \"4.2\"\n")},
          {"show", large},
          {"check", sample, "QVNoSuchOption=1"},
          {"check", sample, "QVDuplex=Sideways"},
          {"check", sample, "QVDuplex"},
          {"emit", sample, "QVUTF8_Version=7"},
          {"emit", sample, "--splice", samplePath("brochure.ps")},
          {"emit", sample, "--splice", folder / "absent.ps", "--output", folder / "out.ps"},
          {"emit", sample, "--settings", text},
          {"emit", sample, "--two-way", "perhaps"},
          {"emit", sample, "--orientation", "5"},
          {"ticket", text},
          {"print", "-d", "q", "-o", "ZAN.PSData.x=/etc/passwd", sample},
          {"serverdata", samplePath("plain.ps")},
          {"module", "run", "--module", TORKA_SAMPLE_MODULE, "--ppd", text},
          {"ping"},
          {"ping", "127.0.0.1", "--count", "0"},
          {"address", "list"},
          {"address", "list", "--file", text},
          {"address", "list", "--ppd", text},
          {"address", "set", "--force", "--file", text, "P", "a"},
          {"address", "set", "--force", "--file", folder / "new", "P\x01", "a"},
          {"address", "remove", "--file", text, "P"}}) {
        expectOneLine(runTool(arguments), arguments);
    }
    EXPECT_EQ(tests::readFile(text), "hello");
    EXPECT_FALSE(std::filesystem::exists(folder / "out.ps"));
}

// Messages of three floors, with names and reasons in them. What programs read stays as it is.
TEST(Tool, SpeaksThePersonsLanguage) {
    const auto in = [](const char* locale, const Arguments& arguments) {
        return runTool(arguments,
                       {"env", "-u", "LANGUAGE", std::string("LC_ALL=") + locale, "CUPS_SERVER=127.0.0.1:1"});
    };
    const std::string file = samplePath("brochure.ps");
    for (const auto& [locale, arguments, message] :
         std::vector<std::tuple<const char*, Arguments, std::string>>{
             {"de_DE.UTF-8",
              {"ticket", "/none"},
              "/none: kann nicht geöffnet werden: Datei oder Ordner nicht gefunden"},
             {"de_DE.UTF-8",
              {"ticket", "open", "good"},
              "unerwartetes Argument: good (torka --help nennt die Befehle)"},
             {"fr_FR.UTF-8",
              {"print", "-d", "q", "-o", "x=1", file},
              "«\u00a0x=1\u00a0» n’est pas une option admise"},
             {"ja_JP.UTF-8", {"queue", "list"}, "プリントサーバー（127.0.0.1:1）に接続できません"},
             {"zh_CN.UTF-8", {"check", sample, "No%1=x"}, "描述文件中没有选项 *No%1"},
             {"C", {"ticket", "/none"}, "/none: cannot be opened: No such file or directory"}}) {
        EXPECT_THAT(in(locale, arguments).errors, StartsWith("torka: " + message));
    }
    for (const Arguments& arguments : {Arguments{"lint", "--format=gcc", samplePath("torka-defects.ppd")},
                                       {"check", sample, "QVTrimSides=Face", "--solve", "--json"},
                                       {"emit", "--help"}}) {
        EXPECT_EQ(in("de_DE.UTF-8", arguments).output, in("C", arguments).output);
    }
}

TEST(Tool, NamesAServerThatItCannotReach) {
    const std::string place = "127.0.0.1:1"; // no server listens on the reserved port tcpmux
    for (const Arguments& arguments : {Arguments{"queue", "list"},
                                       {"queue", "add", "q", "torkasink:/", sample},
                                       {"queue", "remove", "q"},
                                       {"queue", "check", "q"},
                                       {"address", "list", "-d", "q"},
                                       {"address", "set", "--file", "list", "q", "10.0.0.1"},
                                       {"serverdata", "-d", "q"},
                                       {"print", "-d", "q", sample},
                                       {"print", sample},
                                       {"command", "send", "q", "Command_LocaleCode", "de"}}) {
        const tests::CommandResult result = runTool(arguments, {"env", "CUPS_SERVER=" + place});
        expectOneLine(result, arguments);
        EXPECT_THAT(result.errors, StartsWith("torka: Cannot reach the print server at " + place));
    }
}

TEST(Tool, SaysThatAServerTakesConnectionsAndDoesNotAnswer) {
    const tests::TemporaryFolder folder;
    const std::string script = "import os, socket, subprocess, sys, threading\n"
                               "server = socket.socket(socket.AF_UNIX)\n"
                               "server.bind(sys.argv[1])\n"
                               "server.listen()\n"
                               "def hang_up():\n"
                               "    while True: server.accept()[0].close()\n"
                               "threading.Thread(target=hang_up, daemon=True).start()\n"
                               "os.environ['CUPS_SERVER'] = sys.argv[1]\n"
                               "sys.exit(subprocess.run(sys.argv[2:]).returncode)\n";
    for (const Arguments& arguments : {Arguments{"queue", "list"}, {"print", "-d", "q", sample}}) {
        const std::string place = folder / arguments[0];
        const tests::CommandResult result = runTool(arguments, {"/usr/bin/python3", "-c", script, place});
        expectOneLine(result, arguments);
        EXPECT_THAT(result.errors, HasSubstr(place + " takes connections but does not answer"));
    }
}

TEST(Tool, EndsInOrderWithoutMemory) {
    if (platform::hasAddressSanitizer) {
        GTEST_SKIP() << "a sanitizer needs more address space than any limit here";
    }
    const tests::TemporaryFolder folder;
    std::string text = "*PPD-Adobe: \"4.3\"\n";
    for (int i = 0; i < 100000; ++i) {
        const std::string key = "*K" + std::to_string(i);
        text += "*%ZANFlags " + key + ": \n*OpenUI " + key + "/x: PickOne\n" + key +
                " a/b: \"x\"\n*CloseUI: " + key + "\n";
    }
    const std::string huge = folder.Write("huge.ppd", text).string();
    int exhausted = 0;
    for (int kilobytes = 40000; kilobytes <= 120000; kilobytes += 20000) {
        const tests::CommandResult result =
            tests::runCommand({"sh", "-c", "ulimit -v $1 && exec \"$0\" lint \"$2\"",
                               TORKA_BINARY_DIR "/bin/torka", std::to_string(kilobytes), huge});
        EXPECT_LT(result.status, 128) << kilobytes << ": " << result.errors;
        if (result.status == 2) {
            ++exhausted;
            EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
        }
    }
    EXPECT_GT(exhausted, 0);
}

TEST(Tool, PrintsNoControlCharacters) {
    for (const auto& [given, shown] : std::vector<std::pair<std::string, std::string>>{
             {"a\x1b[2J", "a\\x1b[2J"},
             {"\x7f", "\\x7f"},
             {"\u0085\u009b31m", "\\xc2\\x85\\xc2\\x9b31m"},
             {"\x9b", "\\x9b"}, // the control sequence introducer of a terminal with eight bits
             {"\u202eppd.exe\u2066", "\\xe2\\x80\\xaeppd.exe\\xe2\\x81\\xa6"},
             {"\xe2\x80", "\\xe2\\x80"},
             {"\xc0\x9b\xed\xa0\x80", "\\xc0\\x9b\\xed\\xa0\\x80"},
             {"B\u00fcro \u7528\u7d19 \U0001f5a8 \u200f\u05d0",
              "B\u00fcro \u7528\u7d19 \U0001f5a8 \u200f\u05d0"}}) {
        EXPECT_THAT(runTool({"show", given}).errors, StartsWith("torka: " + shown + ": ")) << shown;
    }
    // JSON keeps the characters, escaped.
    const tests::TemporaryFolder folder;
    const std::string ppd =
        folder
            .Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*LanguageEncoding: UTF-8\n*LanguageVersion: "
                            "English\n*ModelName: \"a\u202e\u009b\x7f\"\n")
            .string();
    const std::string json = runTool({"show", ppd, "--json"}).output;
    EXPECT_THAT(json, HasSubstr("a\\u202e\\u009b\\u007f"));
    EXPECT_EQ(nlohmann::json::parse(json)["header"]["modelName"], "a\u202e\u009b\x7f");
}

TEST(Settings, TakeTheirTextsFromFilesAndStandardInput) {
    const tests::TemporaryFolder folder;
    // The text, and the setting's value: "" when the text is refused.
    for (const auto& [content, value] : std::vector<std::pair<std::string, std::string>>{
             {"shelf 4\n", "shelf 4"},
             {"shelf 4", "shelf 4"},
             {"shelf 4\n\n", "shelf 4 "}, // a break becomes a blank
             {"=@x", "=@x"},
             {"caf\u00e9", "caf\u00e9"},
             {std::string("a\0b", 3), ""},
             {"\xff", ""},
             {std::string(65537, 'x'), ""}}) {
        const std::string file = folder.Write("text", content).string();
        for (const tests::CommandResult& result : {runTool({"emit", sample, "Notes1=@" + file}),
                                                   runTool({"emit", sample, "Notes1=@-"}, {}, content)}) {
            EXPECT_EQ(result.status, value.empty() ? 2 : 0) << result.errors;
            if (!value.empty()) {
                EXPECT_THAT(result.output, HasSubstr("%%ZANCustom1: " + value + "\n"));
            }
        }
    }
    EXPECT_THAT(runTool({"emit", sample, "Notes1=@@home"}).output, HasSubstr("%%ZANCustom1: @home\n"));
    const Arguments twice{"emit", sample, "Notes1=@-", "Notes2=@-"};
    expectOneLine(runTool(twice), twice);
    // A refused secret is not repeated.
    const tests::CommandResult wrong =
        runTool({"emit", sample, "PageSize=@" + folder.Write("secret", "harbor7").string()});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.errors, ::testing::Not(HasSubstr("harbor7")));
}

} // namespace
} // namespace torka
