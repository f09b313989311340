#pragma once

#include "tests/support/TestSupport.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace torka::tests {

// The private print server of this process: started by the first test that asks, ended after the last. Its
// environment is set for this process (libcups reads it once) and the programs it starts.
class Sandbox {
public:
    // Why there can be none on this machine; "" when there can.
    static std::string Problem();

    // Fails the test when the server does not start.
    Sandbox();
    Sandbox(const Sandbox&) = delete;
    Sandbox& operator=(const Sandbox&) = delete;
    ~Sandbox();

    std::filesystem::path operator/(std::string_view name) const { return folder / "s" / name; }
    void Stop();
    void Start();
    void Restart();
    // What reached the device, "" when nothing did.
    std::string Printed(int job) const;
    // What the filters and the backend of the jobs said.
    std::string ErrorLog() const;

private:
    CommandResult Script(const std::string& action) const; // fails the test when the action does

    TemporaryFolder folder;
};

// Tests of one process share the server: each uses queues of its own.
class SandboxTest : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    Sandbox* sandbox = nullptr;
};

} // namespace torka::tests
