// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

// module run: runs scripts of the sample module from the command line and checks the returned settings.

namespace torka::tests {

namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::StartsWith;

std::vector<std::string> moduleRun(const std::string& module, const std::string& script = {}) {
    std::vector<std::string> arguments = {"module", "run",   "--module",
                                          module,   "--ppd", samplePath("torka-production.ppd")};
    if (!script.empty()) {
        arguments.insert(arguments.end(), {"--script", script});
    }
    return arguments;
}

TEST(ModuleCommand, RunsASessionWithServerData) {
    const TemporaryFolder folder;
    const std::string data = folder / "Office.bididata";
    for (const char* record : {"TrayInfo", "PresetsList", "PresetsData"}) {
        const std::string text = readFile(samplePath(std::string("server-data/data/") + record));
        ASSERT_EQ(runCommand({TORKA_BINARY_DIR "/bin/torka", "record", "put", data, record}, text).status, 0);
    }
    const std::string script =
        folder.Write("script", "print trays\nset QVDuplex ShortEdge\n"
                               "watermark add 0,0,0,255,0,0,0,0,0,450,0,0,48,Helvetica,A, B\n");
    std::vector<std::string> arguments = moduleRun(TORKA_SAMPLE_MODULE, script);
    arguments.insert(arguments.end(), {"--bidi", data, "--changed", "--settings", "QVDuplex=LongEdge",
                                       "--watermark", "0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,first"});
    const json result = runToolForJson(arguments);
    EXPECT_EQ(result["result"], "accepted");
    EXPECT_EQ(result["settings"], json::parse(R"([{"key": "QVDuplex", "value": "ShortEdge"}])"));
    EXPECT_EQ(result["watermarks"], json::parse(R"(["0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,first",
        "0,0,0,255,0,0,0,0,0,450,0,0,48,Helvetica,A, B"])"));
    EXPECT_THAT(readFile(script + ".report"), StartsWith("[trays] 7\n"));

    // All settings, as lines, without server data.
    arguments = moduleRun(TORKA_SAMPLE_MODULE, folder.Write("all", "print trays\nset QVDuplex ShortEdge\n"));
    arguments.insert(arguments.end(), {"--settings", "QVDSPassword=4711"});
    const CommandResult all = runTool(arguments);
    EXPECT_EQ(all.status, 0) << all.errors;
    EXPECT_THAT(all.output, HasSubstr("\nQVDuplex=ShortEdge\n"));
    EXPECT_THAT(all.output, HasSubstr("PageSize="));
    EXPECT_THAT(all.output, HasSubstr("\nQVDSPassword=********\n"));
    EXPECT_EQ(readFile(folder / "all.report"), "[trays] not offered\n");
}

TEST(ModuleCommand, SaysHowASessionEnded) {
    struct Case {
        std::string module;
        const char* script;
        int status;
        const char* errors;
    };
    const TemporaryFolder folder;
    const std::string text = folder.Write("text.so", "no library").string();
    for (const Case& end : {
             Case{TORKA_SAMPLE_MODULE, "result 1\n", 1, "cancelled"},
             Case{TORKA_SAMPLE_MODULE, "result 9\n", 1, "address refused"},
             Case{TORKA_SAMPLE_MODULE, "begin-fail\n", 1, "no session"},
             Case{TORKA_SAMPLE_MODULE, "open-fail\n", 1, "cancelled"},
             Case{"/nowhere/libzanjp2.so", "", 2, "there is no such module"},
             Case{text, "", 2, "the module does not load"},
             Case{TORKA_INCOMPLETE_MODULE, "", 2, "has no JP1_1EndSession"},
         }) {
        const CommandResult result = runTool(moduleRun(end.module, folder.Write("script", end.script)));
        EXPECT_EQ(result.status, end.status) << end.script;
        EXPECT_EQ(result.output, "") << end.script;
        EXPECT_THAT(result.errors, HasSubstr(end.errors)) << end.script;
    }
}

// A person at a terminal sees what the tool waits for. An interrupt ends the wait for a module that never
// becomes ready, and the session with it.
TEST(ModuleCommand, AnInterruptEndsTheWait) {
    const TemporaryFolder folder;
    std::vector<std::string> command =
        moduleRun(TORKA_SAMPLE_MODULE, folder.Write("script", "not-ready forever\n"));
    static constexpr const char* script = "import os, pty, select, signal, subprocess, sys\n"
                                          "signal.signal(signal.SIGINT, signal.SIG_DFL)\n"
                                          "person, terminal = pty.openpty()\n"
                                          "tool = subprocess.Popen(sys.argv[1:], stderr=terminal)\n"
                                          "said = b''\n"
                                          "while b'Waiting' not in said and select.select([person], [], [], "
                                          "30)[0]: said += os.read(person, 999)\n"
                                          "tool.send_signal(signal.SIGINT)\n"
                                          "status = tool.wait(timeout=60)\n"
                                          "print((said + os.read(person, 999)).decode(), file=sys.stderr)\n"
                                          "sys.exit(status & 255)\n";
    command.insert(command.begin(), {"/usr/bin/python3", "-c", script, TORKA_BINARY_DIR "/bin/torka"});
    const CommandResult result = runCommand(command);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Waiting for the module (Ctrl+C ends it): "));
    EXPECT_THAT(result.errors, HasSubstr("cancelled"));
}

} // namespace

} // namespace torka::tests
