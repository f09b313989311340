// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/cups/CupsQueue.h"
#include "tests/apps/Tool.h"

#include <functional>

namespace torka::tests {

// The text with the first of `from`, which it must have, as `to`.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    EXPECT_NE(text.find(from), std::string::npos) << from;
    return text.replace(text.find(from), from.size(), to);
}

// The job of a tool's answer "Job N on ..."; 0 when it has none.
inline int jobNumber(const std::string& output) {
    return output.starts_with("Job ") ? std::stoi(output.substr(4)) : 0;
}

// The private print server of this process. The first test that needs it starts it; it ends after the last
// test. Its environment is set for this process (libcups reads it once) and for the programs that the process
// starts.
class Sandbox {
public:
    // The reason why this machine cannot run the server; "" when it can.
    static std::string Problem();

    // Fails the test when the server does not start.
    Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;
    ~Sandbox();

    std::filesystem::path operator/(std::string_view name) const { return folder / "s" / name; }
    void Stop() { Script("stop"); }
    void Start() { Script("start"); }
    void Restart() { Script("restart"); }
    // The document that reached the device; "" for none.
    std::string Printed(int job) const;
    // The messages of the jobs' filters and backend.
    std::string ErrorLog() const;

private:
    CommandResult Script(const std::string& action) const; // fails the test when the action does

    TemporaryFolder folder;
};

// Tests of one process share the server. Each test uses its own queues.
class SandboxTest : public testing::Test {
protected:
    ~SandboxTest() override;
    // Gives the process the server's files and its spooler, too.
    void SetUp() override;
    void TearDown() override;

    static void AddQueue(const std::string& name, const std::string& uri = "torkasink:/",
                         const std::string& description = samplePath("torka-production.ppd"));
    // True as soon as the condition is; false after 20 seconds.
    static bool WaitUntil(const std::function<bool()>& condition);
    static platform::JobStatus WaitForEnd(int job);
    // The device torkasink:/wait writes the beginning of a document and waits until Release.
    void WaitForPart(int job) const;
    void Release() const;
    // What follows this beginning in the lines of the device's document.
    std::vector<std::string> PrintedLines(int job, const std::string& start) const;
    // The last document's job, 0 for none; commands do not count.
    static int LastJob();
    // The output of the tool; fails the test when the tool does.
    static std::string Done(const std::vector<std::string>& arguments);
    // Expects this status of the tool and this part of its messages.
    static CommandResult ExpectTool(const std::vector<std::string>& arguments, int status,
                                    const std::string& told);
    // The device's document for a job, drawn by Ghostscript; fails the test when it cannot be drawn.
    std::string Drawn(int job, const std::string& device, const std::string& output = "-") const;

    Sandbox* sandbox = nullptr;
};

} // namespace torka::tests
