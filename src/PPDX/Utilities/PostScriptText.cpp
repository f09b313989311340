// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/PostScriptText.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace torka {

namespace {

constexpr std::string_view delimiters = "()<>[]{}/%";
constexpr std::string_view whiteSpace{"\0\t\n\f\r ", 6};

} // namespace

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
    std::ranges::replace_if(result, endsComment, ' ');
    return result;
}

void PostScriptScanner::Read(std::string_view text) {
    for (const char c : text) {
        Read(c);
    }
}

void PostScriptScanner::Read(char c) {
    const char before = std::exchange(previous, '\0');
    switch (place) {
    case Place::code:
        ReadInCode(c);
        break;
    case Place::string:
        if (before == '\\') {
            break;
        }
        previous = c;
        openStrings += c == '(' ? 1 : 0;
        openStrings -= c == ')' ? 1 : 0;
        if (openStrings == 0) {
            place = Place::code;
        }
        break;
    case Place::hexString:
        if (before == '<' && c == '~') {
            place = Place::base85String;
        } else if (c == '>' || (before == '<' && c == '<')) {
            place = Place::code;
        }
        break;
    case Place::base85String:
        previous = c;
        if (before == '~' && c == '>') {
            place = Place::code;
        }
        break;
    case Place::comment:
        if (endsComment(c)) {
            place = Place::code;
        }
        break;
    }
}

void PostScriptScanner::ReadInCode(char c) {
    switch (c) {
    case '(':
        place = Place::string;
        openStrings = 1;
        break;
    case '<':
        place = Place::hexString;
        previous = c;
        break;
    case '%':
        place = Place::comment;
        break;
    case '{':
        ++openBraces;
        break;
    case '}':
        hasStrayBrace = hasStrayBrace || openBraces == 0;
        openBraces -= openBraces > 0 ? 1 : 0;
        break;
    default:
        break;
    }
}

bool isRegularCharacter(char c) {
    return delimiters.find(c) == std::string_view::npos && whiteSpace.find(c) == std::string_view::npos;
}

} // namespace torka
