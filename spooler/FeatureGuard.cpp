// SPDX-License-Identifier: Apache-2.0
#include "spooler/FeatureGuard.h"

#include "PPDX/Utilities/PostScriptText.h"
#include "spooler/DscComment.h"

#include <algorithm>

namespace torka {

namespace {

constexpr std::string_view declaration = "*%ZANJobNote";
constexpr std::string_view guardlessWords[] = {"Password", "Encrypt", "AESEncrypt", "SecPrint"};
constexpr std::string_view guardlessKeywords[] = {"*Resume", "*QVUserAuthName", "*QVUserAuthPwd"};

bool isGuardless(std::string_view keyword, std::string_view words) {
    if (std::ranges::find(guardlessKeywords, keyword) != std::end(guardlessKeywords) ||
        keyword.find("Password") != std::string_view::npos) {
        return true;
    }
    while (!words.empty()) {
        const std::size_t end = std::min(words.find_first_of("|:\""), words.size());
        if (std::ranges::find(guardlessWords, withoutOuterBlanks(words.substr(0, end))) !=
            std::end(guardlessWords)) {
            return true;
        }
        words.remove_prefix(std::min(end + 1, words.size()));
    }
    return false;
}

} // namespace

KeywordSet unguardedNotes(std::string_view description) {
    KeywordSet notes;
    while (!description.empty()) {
        const std::size_t end = std::min(description.find_first_of("\r\n"), description.size());
        std::string_view line = description.substr(0, end);
        description.remove_prefix(std::min(end + 1, description.size()));
        if (!line.starts_with(declaration)) {
            continue;
        }
        line = withoutOuterBlanks(line.substr(declaration.size()));
        const std::string_view keyword = withoutOuterBlanks(line.substr(0, line.find_first_of("/:")));
        const std::size_t colon = line.find(':');
        if (colon != std::string_view::npos && isGuardless(keyword, line.substr(colon + 1))) {
            notes.emplace(keyword);
        }
    }
    return notes;
}

std::string_view featureKeyword(std::string_view entry) {
    constexpr std::string_view beginning = "%%BeginFeature:";
    constexpr std::string_view ending = "%%EndFeature";
    const std::string_view body = entry.substr(0, entry.find_last_not_of("\r\n") + 1);
    if (!body.starts_with(beginning) || !body.ends_with(ending) ||
        !isLineEnd(body[body.size() - ending.size() - 1])) {
        return {};
    }
    const std::string_view line = body.substr(0, body.find_first_of("\r\n"));
    return firstWord(withoutOuterBlanks(line.substr(beginning.size())));
}

bool canBeGuarded(std::string_view code) {
    PostScriptScanner scanner;
    std::string_view name; // the regular characters up to here
    for (std::size_t i = 0; i < code.size(); ++i) {
        const bool isCode = scanner.Where() == PostScriptScanner::Place::code;
        if (isCode && isRegularCharacter(code[i])) {
            name = code.substr(i - name.size(), name.size() + 1);
        } else if (name == "currentfile" || (isCode && code.substr(i).starts_with("//"))) {
            return false;
        } else {
            name = {};
        }
        scanner.Read(code.substr(i, 1));
    }
    const bool isClosed = scanner.Where() == PostScriptScanner::Place::code ||
                          scanner.Where() == PostScriptScanner::Place::comment;
    return name != "currentfile" && isClosed && scanner.AreBracesBalanced();
}

} // namespace torka
