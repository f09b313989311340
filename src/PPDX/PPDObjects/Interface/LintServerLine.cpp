// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/LintServerLine.h"

#include <algorithm>
#include <string_view>

namespace torka {

namespace {

constexpr std::size_t longestName = 40;               // PPD_MAX_NAME without the NUL
constexpr std::size_t longestStart = 3 * longestName; // holds both names of a line

constexpr std::string_view blanks = " \t\f\v";
constexpr char endOfDosFile = '\x1A'; // which libcups drops

bool isBlank(char c) { return blanks.find(c) != std::string_view::npos; }

// The bytes before the first of `ends`, which are removed from the text.
std::string_view takeName(std::string_view& text, std::string_view ends) {
    const std::string_view name = text.substr(0, text.find_first_of(ends));
    text.remove_prefix(name.size());
    return name;
}

std::optional<ServerLine::Refusal> refusalOf(std::string_view name, std::string_view refused) {
    if (name.size() > longestName) {
        return ServerLine::Refusal{std::string(name), "has more than 40 bytes"};
    }
    const auto isRefused = [refused](char c) {
        return c <= ' ' || c > '~' || refused.find(c) != std::string_view::npos;
    };
    if (std::ranges::any_of(name, isRefused)) {
        return ServerLine::Refusal{std::string(name), "holds a character that it does not take"};
    }
    return std::nullopt;
}

} // namespace

void ServerLine::Take(char c) {
    if (c == endOfDosFile) {
        return;
    }
    if (start.size() < longestStart) {
        start.push_back(c);
    }
    if (!beganQuoted && start.starts_with("*%")) {
        return;
    }
    hasColon = hasColon || c == ':';
    isQuoted = (c == '"' && hasColon) != isQuoted;
}

std::optional<ServerLine::Refusal> ServerLine::End() {
    std::optional<Refusal> refusal = beganQuoted ? std::nullopt : Fault();
    start.clear();
    hasColon = hasColon && isQuoted;
    beganQuoted = isQuoted;
    return refusal;
}

std::optional<ServerLine::Refusal> ServerLine::Fault() const {
    const std::string_view text = start.c_str(); // up to a NUL
    if (std::ranges::all_of(text, isBlank) || text.starts_with("*%")) {
        return std::nullopt;
    }
    if (!text.starts_with('*')) {
        return Refusal{};
    }
    std::string_view rest = text.substr(1);
    const std::string_view keyword = takeName(rest, ": \t\f\v");
    if (auto refusal = refusalOf(keyword, "/"); refusal || rest.empty() || !isBlank(rest.front())) {
        return refusal;
    }
    rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
    return refusalOf(takeName(rest, ":/ \t\f\v"), "");
}

} // namespace torka
