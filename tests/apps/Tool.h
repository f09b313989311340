// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// Runs the command-line tool as a program.

namespace torka::tests {

inline CommandResult runTool(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), TORKA_BINARY_DIR "/bin/torka");
    return runCommand(arguments);
}

inline nlohmann::json runToolForJson(std::vector<std::string> arguments, int status = 0) {
    arguments.emplace_back("--json");
    const CommandResult result = runTool(arguments);
    EXPECT_EQ(result.status, status) << result.errors;
    return nlohmann::json::parse(result.output, nullptr, false);
}

inline std::string samplePath(const std::string& name) { return TORKA_SOURCE_DIR "/samples/" + name; }

} // namespace torka::tests
