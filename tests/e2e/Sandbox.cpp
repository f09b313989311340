// SPDX-License-Identifier: Apache-2.0
#include "tests/e2e/Sandbox.h"

#include "platform/cups/CupsSpooler.h"
#include "platform/posix/PosixSystem.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>
#include <unistd.h>

namespace torka::tests {

std::string Sandbox::Problem() {
    if (geteuid() != 0) {
        return "needs root, to run a print server's filters as lp";
    }
    return access("/usr/sbin/cupsd", X_OK) == 0 ? "" : "cupsd is not installed";
}

CommandResult Sandbox::Script(const std::string& action) const {
    const CommandResult result = runCommand({TORKA_SOURCE_DIR "/scripts/cups-sandbox", "--bin",
                                             TORKA_BINARY_DIR "/bin", action, (folder / "s").string()});
    EXPECT_EQ(result.status, 0) << action << ": " << result.errors;
    return result;
}

Sandbox::Sandbox() {
    // The user lp must be able to enter the folder.
    std::filesystem::permissions(folder.Path(), std::filesystem::perms(0711));
    // A person's own files. libcups keeps standing options in HOME, also those of root.
    const std::filesystem::path home = folder.Path() / "home";
    std::filesystem::create_directory(home);
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (*this / "config").c_str(), 1);
    std::istringstream lines(Script("start").output);
    constexpr std::string_view prefix = "export ";
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        if (line.starts_with(prefix) && equals != std::string::npos && !line.starts_with("export PATH")) {
            const std::string name = line.substr(prefix.size(), equals - prefix.size());
            setenv(name.c_str(), line.substr(equals + 1).c_str(), 1);
        }
    }
}

// Ends the server without the script, which would take longer than the server itself.
Sandbox::~Sandbox() {
    pid_t server = 0;
    std::ifstream(*this / "cupsd.pid") >> server;
    if (server > 0 && kill(server, SIGTERM) == 0) {
        const std::string command = "/proc/" + std::to_string(server) + "/cmdline"; // empty once it has ended
        for (int i = 0; i < 1000 && std::ifstream(command).peek() != EOF; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
}

std::string Sandbox::Printed(int job) const {
    const std::filesystem::path file = *this / ("printed/" + std::to_string(job) + ".ps");
    return std::filesystem::exists(file) ? readFile(file) : std::string();
}

std::string Sandbox::ErrorLog() const {
    const std::string lines =
        runCommand({"grep", "-a", "-e", "^[EW]", "-e", "\\[Job ", (*this / "log/error_log").string()}).output;
    return lines.substr(lines.size() - std::min<std::size_t>(lines.size(), 20000));
}

namespace {

std::unique_ptr<Sandbox> running;

class EndSandbox final : public testing::Environment {
public:
    void TearDown() override { running.reset(); }
};

const testing::Environment* const ending = testing::AddGlobalTestEnvironment(new EndSandbox);

} // namespace

void SandboxTest::SetUp() {
    if (const std::string problem = Sandbox::Problem(); !problem.empty()) {
        GTEST_SKIP() << problem;
    }
    if (!running) {
        running = std::make_unique<Sandbox>();
    }
    sandbox = running.get();
    // What the person and the controllers of the last test kept.
    std::filesystem::remove_all(*sandbox / "config/torka");
    for (const auto& each : std::filesystem::directory_iterator(*sandbox / "root/etc/torka/controllers")) {
        std::filesystem::remove_all(each);
    }
    platform::PosixSystemOptions options;
    options.rootFromEnvironment = true;
    platform::setSystem(std::make_unique<platform::PosixSystem>(options));
    platform::setSpooler(std::make_unique<CupsSpooler>());
}

SandboxTest::~SandboxTest() {
    platform::setSpooler(nullptr);
    platform::setSystem(nullptr);
}

void SandboxTest::TearDown() {
    if (HasFailure() && sandbox != nullptr) {
        std::cerr << sandbox->ErrorLog();
    }
}

void SandboxTest::AddQueue(const std::string& name, const std::string& uri, const std::string& description) {
    Done({"queue", "add", "--force", name, uri, description});
}

bool SandboxTest::WaitUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 1000; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

void SandboxTest::WaitForPart(int job) const {
    const std::filesystem::path part = *sandbox / ("printed/." + std::to_string(job) + ".part");
    EXPECT_TRUE(WaitUntil([&part] {
        std::error_code none;
        return std::filesystem::file_size(part, none) >= 65536 && !none;
    }));
}

void SandboxTest::Release() const { std::ofstream(*sandbox / "printed/release") << ""; }

std::string SandboxTest::Done(const std::vector<std::string>& arguments) {
    return ExpectTool(arguments, 0, "").output;
}

CommandResult SandboxTest::ExpectTool(const std::vector<std::string>& arguments, int status,
                                      const std::string& told) {
    CommandResult result = runTool(arguments);
    EXPECT_EQ(result.status, status) << arguments.back() << ": " << result.output << result.errors;
    EXPECT_NE(result.errors.find(told), std::string::npos) << arguments.back() << ": " << result.errors;
    return result;
}

std::string SandboxTest::Drawn(int job, const std::string& device, const std::string& output) const {
    return runGhostscript(device,
                          {"-r36", "-o", output, *sandbox / ("printed/" + std::to_string(job) + ".ps")});
}

std::vector<std::string> SandboxTest::PrintedLines(int job, const std::string& start) const {
    std::vector<std::string> found;
    std::istringstream lines(sandbox->Printed(job));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(start)) {
            found.push_back(line.substr(start.size()));
        }
    }
    return found;
}

int SandboxTest::LastJob() {
    std::vector<SpoolerJob> jobs;
    CupsSpooler().GetJobs(jobs);
    int last = 0;
    for (const SpoolerJob& job : jobs) {
        last = job.title.starts_with("Command_") ? last : std::max(last, job.id);
    }
    return last;
}

platform::JobStatus SandboxTest::WaitForEnd(int job) {
    WaitUntil([job] { return platform::jobStatus(job).IsOver(); });
    return platform::jobStatus(job);
}

} // namespace torka::tests
