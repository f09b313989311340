// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/LintWords.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace torka {

namespace {

constexpr std::size_t maximumLetters = 64; // longer words have no suggestion

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// The number of letters in which two words differ (optimal string alignment). REQUIRES: at most
// maximumLetters.
std::size_t letterDistance(std::string_view left, std::string_view right) {
    std::array<std::array<std::size_t, maximumLetters + 1>, 3> rows{};
    for (std::size_t j = 0; j <= right.size(); ++j) {
        rows[0][j] = j;
    }
    for (std::size_t i = 1; i <= left.size(); ++i) {
        auto& row = rows[i % 3];
        const auto& above = rows[(i + 2) % 3];
        const auto& twoAbove = rows[(i + 1) % 3];
        row[0] = i;
        for (std::size_t j = 1; j <= right.size(); ++j) {
            const bool isSame = lower(left[i - 1]) == lower(right[j - 1]);
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (isSame ? 0U : 1U)});
            if (i > 1 && j > 1 && lower(left[i - 1]) == lower(right[j - 2]) &&
                lower(left[i - 2]) == lower(right[j - 1])) {
                row[j] = std::min(row[j], twoAbove[j - 2] + 1);
            }
        }
    }
    return rows[left.size() % 3][right.size()];
}

constexpr std::string_view psBlanks = " \t\r\n\f";

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (lower(c) >= 'a' && lower(c) <= 'f'); }

// Skips one PostScript text after another.
class BalanceReader {
public:
    BalanceReader(std::string_view postscript, std::string_view skipped)
        : text(postscript)
        , placeholder(skipped) {}

    std::string_view Fault() {
        std::size_t braces = 0;
        while (at < text.size()) {
            if (SkipPlaceholder()) {
                continue;
            }
            switch (text[at++]) {
            case '%':
                at = std::min(text.find_first_of("\r\n", at), text.size());
                break;
            case '(':
                if (!SkipString()) {
                    return "a parenthesis is not closed";
                }
                break;
            case ')':
                return "a closing parenthesis has no opening one";
            case '{':
                ++braces;
                break;
            case '}':
                if (braces-- == 0) {
                    return "a closing brace has no opening one";
                }
                break;
            case '<':
                if (const std::string_view fault = SkipAngle(); !fault.empty()) {
                    return fault;
                }
                break;
            case '>':
                if (text.substr(at, 1) != ">") {
                    return "a closing angle bracket has no opening one";
                }
                ++at;
                break;
            default:
                break;
            }
        }
        return braces > 0 ? "a brace is not closed" : "";
    }

private:
    bool SkipPlaceholder() {
        const bool isHere = !placeholder.empty() && text.substr(at).starts_with(placeholder);
        at += isHere ? placeholder.size() : 0;
        return isHere;
    }
    bool SkipString() {
        for (std::size_t depth = 1; at < text.size();) {
            const char c = text[at++];
            if (c == '\\') {
                at = std::min(at + 1, text.size());
            } else if (c == '(') {
                ++depth;
            } else if (c == ')' && --depth == 0) {
                return true;
            }
        }
        return false;
    }
    // "<<" of a dictionary, "<~...~>" or "<...>".
    std::string_view SkipAngle() {
        if (text.substr(at, 1) == "<") {
            ++at;
            return "";
        }
        if (text.substr(at, 1) == "~") {
            const std::size_t end = text.find("~>", at);
            at = end == std::string_view::npos ? text.size() : end + 2;
            return end == std::string_view::npos ? "a base-85 string is not closed" : "";
        }
        while (at < text.size()) {
            if (SkipPlaceholder()) {
                continue;
            }
            const char c = text[at++];
            if (c == '>') {
                return "";
            }
            if (!isHexDigit(c) && psBlanks.find(c) == std::string_view::npos) {
                return "a hexadecimal string holds another character";
            }
        }
        return "a hexadecimal string is not closed";
    }

    std::string_view text;
    std::string_view placeholder;
    std::size_t at = 0;
};

} // namespace

std::string_view closestWord(std::string_view word, std::span<const std::string_view> candidates) {
    constexpr std::size_t shortWord = 4;
    std::size_t nearest = word.size() < shortWord ? 2 : 3;
    std::string_view result;
    for (const std::string_view candidate : candidates) {
        const std::size_t longer = std::max(word.size(), candidate.size());
        const std::size_t shorter = std::min(word.size(), candidate.size());
        if (longer - shorter < nearest && longer <= maximumLetters && candidate != word) {
            const std::size_t distance = letterDistance(word, candidate);
            if (distance < nearest && distance < shorter) {
                nearest = distance;
                result = candidate;
            }
        }
    }
    return result;
}

std::string_view postscriptFault(std::string_view postscript, std::string_view placeholder) {
    return BalanceReader(postscript, placeholder).Fault();
}

bool standsInLongerString(std::string_view postscript, std::string_view placeholder) {
    for (std::size_t at = 0; at < postscript.size(); ++at) {
        if (postscript[at] == '%') {
            at = std::min(postscript.find_first_of("\r\n", at), postscript.size());
        } else if (postscript[at] == '(') {
            const std::size_t first = at + 1;
            for (std::size_t depth = 1; depth > 0 && ++at < postscript.size();) {
                const char c = postscript[at];
                at += c == '\\' ? 1 : 0;
                depth += c == '(' ? 1 : 0;
                depth -= c == ')' ? 1 : 0;
            }
            const std::string_view held = postscript.substr(first, std::min(at, postscript.size()) - first);
            if (held != placeholder && held.find(placeholder) != std::string_view::npos) {
                return true;
            }
        }
    }
    return false;
}

} // namespace torka
