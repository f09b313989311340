// SPDX-License-Identifier: Apache-2.0
#include "output/DynamicOption.h"

#include "MarkLetters.h"

namespace torka {

std::string withByteOrderMarks(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (;;) {
        const std::size_t found = text.find(markLetters);
        result += text.substr(0, found);
        if (found == std::string_view::npos) {
            return result;
        }
        result += narrowMark;
        text.remove_prefix(found + markLetters.size());
    }
}

std::string replaceWithBackslashIfNeeded(std::string_view pattern, std::string text) {
    const std::size_t found = text.find(pattern);
    if (found != std::string::npos && !pattern.empty()) {
        text.replace(found, pattern.size(), pattern == "(" ? "\\050" : "\\051");
    }
    return text;
}

} // namespace torka
