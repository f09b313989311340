#include "output/DynamicOption.h"

#include "MarkLetters.h"

#include <algorithm>
#include <vector>

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

std::string asStringBody(std::string_view text) {
    std::vector<std::size_t> open;
    std::vector<std::size_t> stray;
    std::size_t at = 0;
    bool endsInBackslash = false;
    while (at < text.size()) {
        if (text[at] == '\\') {
            endsInBackslash = at + 1 == text.size();
            at += 2;
            continue;
        }
        if (text[at] == '(') {
            open.push_back(at);
        } else if (text[at] == ')') {
            if (open.empty()) {
                stray.push_back(at);
            } else {
                open.pop_back();
            }
        }
        ++at;
    }
    if (open.empty() && stray.empty() && !endsInBackslash) {
        return std::string(text);
    }
    stray.insert(stray.end(), open.begin(), open.end());
    std::sort(stray.begin(), stray.end());
    std::string result;
    auto next = stray.begin();
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (next != stray.end() && *next == i) {
            result += text[i] == '(' ? "\\050" : "\\051";
            ++next;
        } else {
            result += text[i];
        }
    }
    if (endsInBackslash) {
        result += '\\';
    }
    return result;
}

std::string withoutLineBreaks(std::string_view text) {
    std::string result(text);
    std::replace_if(
        result.begin(), result.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    return result;
}

} // namespace torka
