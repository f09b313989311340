// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// Runs the command-line tool as a program.

namespace torka::tests {

// `before` stands before the program, as "env NAME=VALUE" does.
inline CommandResult runTool(const std::vector<std::string>& arguments, std::vector<std::string> before = {},
                             std::string_view input = {}) {
    before.emplace_back(TORKA_BINARY_DIR "/bin/torka");
    before.insert(before.end(), arguments.begin(), arguments.end());
    return runCommand(before, input);
}

inline nlohmann::json runToolForJson(std::vector<std::string> arguments, int status = 0) {
    arguments.emplace_back("--json");
    const CommandResult result = runTool(arguments);
    EXPECT_EQ(result.status, status) << result.errors;
    return nlohmann::json::parse(result.output, nullptr, false);
}

inline std::string samplePath(const std::string& name) { return TORKA_SOURCE_DIR "/samples/" + name; }

} // namespace torka::tests
