// SPDX-License-Identifier: Apache-2.0
#include "tests/support/TestSupport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace torka::tests {

TemporaryFolder::TemporaryFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "torka-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) {
        throw std::runtime_error("no temporary folder: " + pattern);
    }
    path = pattern;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::filesystem::path TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    const std::filesystem::path file = path / name;
    std::ofstream out(file, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    return file;
}

std::string noise(std::size_t size) {
    std::string text(size, ' ');
    unsigned seed = 1;
    std::ranges::generate(text, [&seed] {
        seed = seed * 1103515245U + 12345U;
        return static_cast<char>('!' + (seed >> 16U) % 90);
    });
    return text;
}

namespace {

using TemporaryStream = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

TemporaryStream temporaryStream() { return {std::tmpfile(), &std::fclose}; }

std::string contentOf(std::FILE* stream) {
    std::rewind(stream);
    std::string content;
    std::array<char, 65536> block{};
    for (std::size_t count = 0; (count = std::fread(block.data(), 1, block.size(), stream)) > 0;) {
        content.append(block.data(), count);
    }
    return content;
}

} // namespace

// Uses files instead of pipes, so that neither side can block the other.
CommandResult runCommand(const std::vector<std::string>& programAndArguments, std::string_view input) {
    std::vector<std::string> texts = programAndArguments;
    std::vector<char*> arguments;
    for (std::string& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    const std::array<TemporaryStream, 3> streams{temporaryStream(), temporaryStream(), temporaryStream()};
    if (!input.empty()) {
        std::fwrite(input.data(), 1, input.size(), streams[0].get());
    }
    std::rewind(streams[0].get());

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (int i = 0; i < 3; ++i) {
        posix_spawn_file_actions_adddup2(&actions, fileno(streams[static_cast<std::size_t>(i)].get()), i);
    }
    pid_t child = 0;
    const int failure = posix_spawnp(&child, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    CommandResult result;
    int status = 0;
    if (failure != 0 || waitpid(child, &status, 0) != child) {
        result.errors = "cannot run " + texts.front();
        return result;
    }
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    result.output = contentOf(streams[1].get());
    result.errors = contentOf(streams[2].get());
    return result;
}

std::string runGhostscript(const std::string& device, const std::vector<std::string>& arguments) {
    std::vector<std::string> command = {"gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=" + device};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const CommandResult result = runCommand(command);
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
    return result.output + result.errors;
}

std::string runPython(const std::string& script, const std::vector<std::string>& arguments,
                      std::string_view input) {
    std::vector<std::string> command = {"/usr/bin/python3", "-c", script};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const CommandResult result = runCommand(command, input);
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    EXPECT_TRUE(in.is_open()) << path;
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

} // namespace torka::tests
