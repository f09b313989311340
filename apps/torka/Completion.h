// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/App.hpp>

#include <functional>
#include <string>
#include <vector>

// What can follow an unfinished command line of the tool.

namespace torka::tool {

struct Candidate {
    std::string text;        // the whole word
    std::string description; // may be ""
};

enum class CompletedPaths { none, files, folders };

struct Completion {
    std::vector<Candidate> candidates;           // printable, each begins with the last word
    CompletedPaths paths = CompletedPaths::none; // what the shell itself completes
};

// Completes the last of `words`; the first is the program. Asks the print server when a queue or the settings
// of one are meant, and calls `beforeAsking` first. Foreign texts that are not printable are left out.
Completion complete(const CLI::App& app, const std::vector<std::string>& words,
                    const std::function<void()>& beforeAsking);

} // namespace torka::tool
