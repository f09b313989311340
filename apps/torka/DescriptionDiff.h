// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torka::tool {

// One difference between two descriptions.
struct DescriptionChange {
    // One word: "header", "option", "property", "text", "default", "choice", "order", "code", "constraint",
    // "requirement", "page", "template", "shortcuts" or "lines".
    std::string what;
    std::string subject; // keyword, keyword and choice, or name of a header value
    // The two values; nullopt on the side that lacks the subject.
    std::optional<std::string> before;
    std::optional<std::string> after;
};

// Compares what the descriptions offer: header, options, choices, their code, constraints, pages, management
// template and quick access. Ignores the order of options.
std::vector<DescriptionChange> compareDescriptions(const ZANPPD& before, const ZANPPD& after);

// Compares the lines of two files, in any order, without comments and empty lines. Empty when they are the
// same; else one change that counts the lines on each side only.
std::vector<DescriptionChange> compareLines(std::string_view before, std::string_view after);

} // namespace torka::tool
