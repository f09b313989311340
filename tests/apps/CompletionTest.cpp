// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

#include <filesystem>

// Completion in a real bash: what its line editor would insert, and that nothing foreign is run.

namespace torka {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using tests::samplePath;
using Lines = std::vector<std::string>;

// Prints the options that the function gives to compopt, then the insertions, then the last word of the line
// with the only insertion, as bash reads it.
constexpr const char* bashScript = R"(
cd "$1"; . "$2"; compopt() { printf 'compopt %s\n' "$*"; }
COMP_LINE=$4 COMP_POINT=${#4}
_torka "$3"; [ ${#COMPREPLY[@]} = 0 ] || printf '%s\n' "${COMPREPLY[@]}"
[ ${#COMPREPLY[@]} != 1 ] || [[ $4 == *\"* ]] || { eval "set -- $4${COMPREPLY[0]#"$5"}"; printf 'word %s\n' "${!#}"; })";

// `kept` is the part of the line's end that bash replaces by the insertion.
Lines completed(const std::filesystem::path& folder, const std::string& line, const std::string& kept) {
    const tests::CommandResult result = tests::runCommand(
        {"env", "CUPS_SERVER=127.0.0.1:1", "bash", "--norc", "-c", bashScript, "bash", folder.string(),
         TORKA_SOURCE_DIR "/completions/torka.bash", TORKA_BINARY_DIR "/bin/torka", line, kept});
    EXPECT_EQ(result.errors, "") << line;
    Lines lines;
    for (std::size_t at = 0; at < result.output.size(); at = result.output.find('\n', at) + 1) {
        lines.push_back(result.output.substr(at, result.output.find('\n', at) - at));
    }
    return lines;
}

TEST(Completion, OffersWhatCanFollowInBash) {
    const tests::TemporaryFolder folder;
    std::filesystem::copy(samplePath("torka-production.ppd"), folder / "a b.ppd");
    const auto complete = [&folder](const std::string& line, const std::string& kept) {
        return completed(folder.Path(), line, kept);
    };
    EXPECT_THAT(complete("torka qu", "qu"), ElementsAre("queue", "word queue"));
    EXPECT_THAT(complete("torka queue a", "a"), ElementsAre("add", "word add"));
    EXPECT_THAT(complete("torka lint --fo", "--fo"), ElementsAre("--format", "word --format"));
    EXPECT_THAT(complete("torka lint --format=g", "g"), ElementsAre("gcc", "word --format=gcc"));
    EXPECT_THAT(complete("torka lint --format j", "j"), ElementsAre("json", "word json"));
    EXPECT_THAT(complete("torka lint ", ""), ElementsAre("compopt -o default"));
    EXPECT_THAT(complete("torka lint --bundle ", ""), ElementsAre("compopt -o dirnames"));
    EXPECT_THAT(complete("torka emit a\\ b.ppd QVTrimS", "QVTrimS"),
                ElementsAre("compopt -o nospace", "QVTrimSides=", "word QVTrimSides="));
    EXPECT_THAT(complete("torka emit 'a b.ppd' --two-way on QVTrimSides=", ""),
                IsSupersetOf({"None", "Face"}));
    EXPECT_THAT(complete("torka emit --strict \"a b.ppd\" \\*QVTrimSides=Fac", "Fac"), ElementsAre("Face"));
    EXPECT_THAT(complete("torka emit \"a b.ppd\" \"QVTrimSides=Fac", "QVTrimSides=Fac"),
                ElementsAre("QVTrimSides=Face"));
    EXPECT_THAT(complete("torka emit a\\ b.ppd QVTrimSides=Face QVTrimS", "QVTrimS"), IsEmpty()); // is set
    EXPECT_THAT(complete("torka emit a\\ b.ppd Notes1=@a", "a"),
                ElementsAre("a\\ b.ppd", "word Notes1=@a b.ppd"));
    EXPECT_THAT(complete("torka print -d ", ""), IsEmpty()); // no server
    EXPECT_THAT(complete("torka emit missing.ppd QV", "QV"), IsEmpty());
    EXPECT_THAT(complete("torka manu", "manu"), IsEmpty()); // hidden
}

TEST(Completion, RunsNothingOfADescription) {
    const tests::TemporaryFolder folder;
    for (const std::string choice : {"$(touch${IFS}ran)", "`touch${IFS}ran`", "a;touch${IFS}ran", "a|b&c>ran",
                                     "a'b", "{a,b}", "$HOME", "~root", "a*", "!!", "-n", "%s%n", "a\\b"}) {
        folder.Write(
            "p.ppd",
            "*PPD-Adobe: \"4.3\"\n*LanguageEncoding: UTF-8\n*LanguageVersion: English\n"
            "*%ZANFlags *Evil: Dynamic\n*%ZANGroup *Evil: G\n*OpenUI *Evil/Evil: PickOne\n*DefaultEvil: " +
                choice + "\n*Evil " + choice + "/Choice: \"\"\n*CloseUI: *Evil\n");
        const Lines lines = completed(folder.Path(), "torka emit p.ppd Evil=", "");
        ASSERT_FALSE(lines.empty()) << choice;
        EXPECT_EQ(lines.back(), "word Evil=" + choice);
        EXPECT_FALSE(std::filesystem::exists(folder / "ran")) << choice;
    }
    folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*LanguageEncoding: UTF-8\n*LanguageVersion: English\n"
                          "*%ZANFlags *Evil: Dynamic\n*%ZANGroup *Evil: G\n*OpenUI *Evil/Evil: "
                          "PickOne\n*Evil a\x1b[2J/Choice: \"\"\n*CloseUI: *Evil\n");
    EXPECT_THAT(completed(folder.Path(), "torka emit p.ppd Evil=", ""), IsEmpty());
}

// Without the limit of its own the tool would wait until Python loses its patience.
TEST(Completion, GivesUpOnAServerThatDoesNotAnswer) {
    EXPECT_EQ(tests::runPython(
                  "import os, socket, subprocess, sys\n"
                  "server = socket.create_server(('127.0.0.1', 0))\n"
                  "place = 'CUPS_SERVER=127.0.0.1:%d' % server.getsockname()[1]\n"
                  "command = ['env', place, sys.argv[1], 'complete', 'words', 'torka', 'print', '-d', '']\n"
                  "print(subprocess.run(command, capture_output=True, timeout=30).stdout)",
                  {TORKA_BINARY_DIR "/bin/torka"}),
              "b''\n");
}

} // namespace
} // namespace torka
