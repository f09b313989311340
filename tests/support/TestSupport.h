// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Log.h"
#include "platform/memory/MemorySystem.h"
#include "tests/support/ScopedDouble.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// Shared by the tests of several areas.

namespace torka::tests {

// A new empty folder. The destructor removes it with its content.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    const std::filesystem::path& Path() const { return path; }
    std::filesystem::path operator/(std::string_view name) const { return path / name; }
    // Writes a file into the folder and returns its path.
    std::filesystem::path Write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path path;
};

// Collects the log while it lives. The destructor restores the default sink.
class CapturingLog {
public:
    CapturingLog() { setLogSink(sink); }
    CapturingLog(const CapturingLog&) = delete;
    CapturingLog& operator=(const CapturingLog&) = delete;
    ~CapturingLog() { setLogSink(nullptr); }

    const std::vector<std::string>& Lines() const { return sink->lines; }

private:
    struct Sink final : LogSink {
        void Line(std::string_view text) override { lines.emplace_back(text); }
        std::vector<std::string> lines;
    };
    std::shared_ptr<Sink> sink = std::make_shared<Sink>();
};

// The process's system, in memory, while it lives. The destructor leaves the process without a system.
using ScopedMemorySystem = ScopedDouble<MemorySystem, setSystem>;

// Counts the copies of a text in the writable memory of this process. Each byte of the argument is XORed with
// `secretMask`, so that the search itself holds no copy.
inline constexpr char secretMask = '\x55';
std::size_t copiesInMemory(std::string_view maskedText);

struct CommandResult {
    int status = -1; // exit status, 128 + signal when killed, -1 when it could not be started
    std::string output;
    std::string errors;
};

// Runs a program, found in PATH, with its arguments and without a shell, and waits for it.
CommandResult runCommand(const std::vector<std::string>& programAndArguments, std::string_view input = {});
// The output of Ghostscript with the device and the arguments; fails the test when it fails.
std::string runGhostscript(const std::string& device, const std::vector<std::string>& arguments);
// The output of `/usr/bin/python3 -c SCRIPT ARGUMENTS...`; fails the test when the script fails.
std::string runPython(const std::string& script, const std::vector<std::string>& arguments = {},
                      std::string_view input = {});

// Printable characters that do not compress well, the same each time.
std::string noise(std::size_t size);

// Reads a whole file; fails the test when it cannot be read.
std::string readFile(const std::filesystem::path& path);

} // namespace torka::tests
