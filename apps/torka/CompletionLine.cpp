// SPDX-License-Identifier: Apache-2.0
#include "apps/torka/CompletionLine.h"

#include <cctype>

namespace torka::tool {

namespace {

// Whether a backslash within this quote ("\0" for none) quotes the character behind it.
bool escapes(char quote, char next) {
    return quote == '\0' || (quote == '"' && std::string_view("$`\"\\").find(next) != std::string_view::npos);
}

} // namespace

CompletionLine::CompletionLine(std::string_view line, std::string_view breaks)
    : words(1) {
    bool hasWord = false; // the last word has begun; it may be empty within quotes
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const bool hasNext = i + 1 < line.size();
        if (quote == '\0' && (c == ' ' || c == '\t')) {
            if (hasWord) {
                words.emplace_back();
            }
            hasWord = false;
            kept = 0;
            continue;
        }
        hasWord = true;
        if (quote == '\0' && (c == '"' || c == '\'')) {
            quote = c;
            kept = words.back().size();
        } else if (c == quote && quote != '\0') {
            quote = '\0';
            kept = breaks.find(c) != std::string_view::npos ? words.back().size() : kept;
        } else if (c == '\\' && hasNext && escapes(quote, line[i + 1])) {
            words.back() += line[++i];
        } else {
            words.back() += c;
            if (quote == '\0' && breaks.find(c) != std::string_view::npos) {
                kept = words.back().size();
            }
        }
    }
}

std::string CompletionLine::Insertion(std::string_view candidate) const {
    std::string out;
    for (const char c : candidate.substr(std::min(kept, candidate.size()))) {
        const bool isPlain = std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                             static_cast<unsigned char>(c) >= 0x80 ||
                             std::string_view("_-./=+,:@%").find(c) != std::string_view::npos;
        if (quote == '"' && c == '!') {
            return {}; // the history would be searched for it, and no quoting within quotes prevents that
        }
        if (quote == '\'' && c == '\'') {
            out += "'\\''";
            continue;
        }
        const bool isEscaped = !isPlain && escapes(quote, c);
        out += isEscaped ? "\\" : "";
        out += c;
    }
    return out;
}

} // namespace torka::tool
