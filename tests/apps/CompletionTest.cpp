// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <filesystem>

// Completion in a real bash: what its line editor would insert, and that nothing foreign is run.

namespace torka {
namespace {

using tests::samplePath;

// Prints the options that the function gives to compopt, then the insertions, then the last word of the line
// with the only insertion, as bash reads it.
constexpr const char* bashScript = R"(
cd "$1"; . "$2"; compopt() { printf 'compopt %s\n' "$*"; }
COMP_LINE=$4 COMP_POINT=${#4}
_torka "$3"; [ ${#COMPREPLY[@]} = 0 ] || printf '%s\n' "${COMPREPLY[@]}"
[ ${#COMPREPLY[@]} != 1 ] || [[ $4 == *\"* ]] || { eval "set -- $4${COMPREPLY[0]#"$5"}"; printf 'word %s\n' "${!#}"; })";

// `kept` is the part of the line's end that bash replaces by the insertion.
std::string completed(const std::filesystem::path& folder, const std::string& line, const std::string& kept) {
    const tests::CommandResult result = tests::runCommand(
        {"env", "CUPS_SERVER=127.0.0.1:1", "bash", "--norc", "-c", bashScript, "bash", folder.string(),
         TORKA_SOURCE_DIR "/completions/torka.bash", TORKA_BINARY_DIR "/bin/torka", line, kept});
    EXPECT_EQ(result.errors, "") << line;
    return result.output;
}

TEST(Completion, OffersWhatCanFollowInBash) {
    const tests::TemporaryFolder folder;
    std::filesystem::copy(samplePath("torka-production.ppd"), folder / "a b.ppd");
    for (const auto& [line, kept, offered] : {
             std::tuple<const char*, const char*, const char*>{"torka qu", "qu", "queue\nword queue\n"},
             {"torka queue a", "a", "add\nword add\n"},
             {"torka lint --fo", "--fo", "--format\nword --format\n"},
             {"torka lint --format=g", "g", "gcc\nword --format=gcc\n"},
             {"torka lint --format j", "j", "json\nword json\n"},
             {"torka lint ", "", "compopt -o default\n"},
             {"torka lint --bundle ", "", "compopt -o dirnames\n"},
             {"torka emit a\\ b.ppd QVTrimS", "QVTrimS",
              "compopt -o nospace\nQVTrimSides=\nword QVTrimSides=\n"},
             {"torka emit --strict \"a b.ppd\" \\*QVTrimSides=Fac", "Fac", "Face\n"},
             {"torka emit \"a b.ppd\" \"QVTrimSides=Fac", "QVTrimSides=Fac", "QVTrimSides=Face\n"},
             {"torka emit a\\ b.ppd QVTrimSides=Face QVTrimS", "QVTrimS", ""}, // is set
             {"torka emit a\\ b.ppd Notes1=@a", "a", "a\\ b.ppd\nword Notes1=@a b.ppd\n"},
             {"torka print -d ", "", ""}, // no server
             {"torka emit missing.ppd QV", "QV", ""},
             {"torka manu", "manu", ""}, // hidden
         }) {
        EXPECT_EQ(completed(folder.Path(), line, kept), offered) << line;
    }
    const std::string choices =
        completed(folder.Path(), "torka emit 'a b.ppd' --two-way on QVTrimSides=", "");
    EXPECT_TRUE(choices.find("None\n") != std::string::npos && choices.find("Face\n") != std::string::npos)
        << choices;
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
        const std::string lines = completed(folder.Path(), "torka emit p.ppd Evil=", "");
        EXPECT_TRUE(lines.ends_with("\nword Evil=" + choice + "\n")) << choice << ": " << lines;
        EXPECT_FALSE(std::filesystem::exists(folder / "ran")) << choice;
    }
    folder.Write("p.ppd", "*PPD-Adobe: \"4.3\"\n*LanguageEncoding: UTF-8\n*LanguageVersion: English\n"
                          "*%ZANFlags *Evil: Dynamic\n*%ZANGroup *Evil: G\n*OpenUI *Evil/Evil: "
                          "PickOne\n*Evil a\x1b[2J/Choice: \"\"\n*CloseUI: *Evil\n");
    EXPECT_EQ(completed(folder.Path(), "torka emit p.ppd Evil=", ""), "");
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
