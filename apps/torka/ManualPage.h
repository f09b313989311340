// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>

#include <string>

namespace torka::tool {

// The manual page of a command directly below the tool, or of the tool itself, in the macros of man(7). The
// page of a group of commands has a part for each of them.
std::string manualPage(const CLI::App& command);

// "torka-queue" for the command "torka queue".
std::string pageName(const CLI::App& command);

} // namespace torka::tool
