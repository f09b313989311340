#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The language of module scripts (README.md): reading only. What the lines do is ScriptRunner's.

namespace torka::jobproperties {

struct ScriptLine {
    std::size_t number = 0; // from 1
    std::string command;    // "watermark add" is one command
    std::vector<std::string> words;
};

struct Script {
    std::vector<ScriptLine> lines;
    // Empty when every line was understood; otherwise the first that was not, with its number.
    std::string error;

    static Script FromText(std::string_view text);
    static Script FromFile(const std::string& path);

    // The last line with the command; null when there is none.
    const ScriptLine* Find(std::string_view command) const;
};

} // namespace torka::jobproperties
