// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Reads the language of module scripts (README.md). ScriptRunner executes the lines.

namespace torka::jobproperties {

struct ScriptLine {
    std::size_t number = 0; // from 1
    std::string command;    // "watermark add" is one command
    std::vector<std::string> words;
};

struct Script {
    std::vector<ScriptLine> lines;
    // Empty when every line is valid; otherwise the first invalid line, with its number.
    std::string error;

    static Script FromText(std::string_view text);
    static Script FromFile(const std::string& path);

    // Returns the last line with the command; null when there is none.
    const ScriptLine* Find(std::string_view command) const;
};

} // namespace torka::jobproperties
