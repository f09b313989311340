// SPDX-License-Identifier: Apache-2.0
#include "tests/apps/Tool.h"

#include <gmock/gmock.h>

namespace torka::tests {

namespace {

using ::testing::HasSubstr;

// A person at a terminal sees what the tool waits for. An interrupt ends the wait for a module that never
// becomes ready, and the session with it.
TEST(ModuleCommand, AnInterruptEndsTheWait) {
    const TemporaryFolder folder;
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
    const CommandResult result =
        runCommand({"/usr/bin/python3", "-c", script, TORKA_BINARY_DIR "/bin/torka", "module", "run",
                    "--module", TORKA_SAMPLE_MODULE, "--ppd", samplePath("torka-production.ppd"), "--script",
                    folder.Write("script", "not-ready forever\n")});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("Waiting for the module (Ctrl+C ends it): "));
    EXPECT_THAT(result.errors, HasSubstr("cancelled"));
}

} // namespace

} // namespace torka::tests
