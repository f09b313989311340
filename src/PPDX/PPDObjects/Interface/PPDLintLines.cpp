// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/ElementKeywords.h"
#include "PPDX/PPDObjects/Interface/LintWords.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

#include <algorithm>
#include <array>

// The checks of lines that no reader of an element takes.

namespace torka {

namespace {

char lowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalsIgnoringCase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowerCase, lowerCase);
}

std::string inLowerCase(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), lowerCase);
    return result;
}

// The keyword without "*", "*%", "ZAN" and "*%ZAN" in front.
std::string_view core(std::string_view keyword) {
    for (const std::string_view beginning : {"*", "%", "ZAN"}) {
        keyword.remove_prefix(keyword.starts_with(beginning) ? beginning.size() : 0);
    }
    return keyword;
}

// The known keyword that differs from this one by its letter case, its beginning or two letters; "" for none.
// Behind "*%" only keywords of the extension count, because authors take a line of the server out with "%".
// Short keywords of PPD 4.3 are too near to one another.
std::string_view meantKeyword(std::string_view keyword) {
    constexpr std::size_t shortKeyword = 10;
    const bool isExtensions = keyword.starts_with("*%");
    std::string_view sameCore;
    std::vector<std::string_view> near;
    for (const ElementKeyword& row : elementKeywords) {
        if (equalsIgnoringCase(row.keyword, keyword)) {
            return row.keyword;
        }
        const bool isRowExtensions = row.keyword.starts_with("*%");
        if (isExtensions && !isRowExtensions) {
            continue;
        }
        if (equalsIgnoringCase(core(row.keyword), core(keyword)) &&
            (sameCore.empty() || isRowExtensions == isExtensions)) {
            sameCore = row.keyword;
        }
        if (isRowExtensions ? isExtensions || keyword.starts_with("*ZAN")
                            : row.keyword.size() >= shortKeyword) {
            near.push_back(row.keyword);
        }
    }
    return sameCore.empty() ? closestWord(keyword, near) : sameCore;
}

} // namespace

// Notes a line that is meant for a job note and that its reader has not taken.
bool PPDLint::CheckNoteLine(const Named& line,
                            const std::unordered_map<std::string, std::string>& notesByName) {
    constexpr std::string_view beginning = "default";
    const std::string_view keyword = line.name;
    const bool hasPercent = keyword[1] == '%';
    std::string_view bare = keyword.substr(hasPercent ? 2 : 1);
    bare.remove_prefix(hasPercent && bare.starts_with('*') ? 1 : 0);
    const std::string lower = inLowerCase(bare);
    auto note = notesByName.find(lower);
    const bool isDefault = note == notesByName.end() && lower.starts_with(beginning);
    if (isDefault) {
        note = notesByName.find(lower.substr(beginning.size()));
    }
    if (note == notesByName.end()) {
        return false;
    }
    const std::string_view name = note->second;
    const std::string right =
        (isDefault ? "Default" : "") + std::string(name.substr(name.starts_with('*') ? 1 : 0));
    if (!hasPercent && bare != right) {
        return false; // another keyword of PPD 4.3
    }
    const std::string meant = "*%" + right;
    const bool isMisspelt = hasPercent && keyword != meant;
    Note(PPDLintKind::strayNoteLine, line.line, name, keyword, isMisspelt ? meant : std::string());
    return true;
}

// A line of the same words anywhere else is a comment.
void PPDLint::LineBehindNote(long line, std::string_view note, std::string_view keyword,
                             std::string_view rest) {
    const std::size_t value = rest.find_first_not_of(" \t:");
    if (keyword.size() > 2 && keyword.starts_with("*%") && findElementKeyword(keyword) == nullptr &&
        value != std::string_view::npos && rest[value] == '"') {
        linesBehindNotes.try_emplace(line, note);
    }
}

void PPDLint::LineInTemplate(long line, std::string_view text) {
    const std::string_view keyword = text.substr(0, text.find_first_of(" \t:"));
    if (findElementKeyword(keyword) != nullptr) {
        Note(PPDLintKind::lineInTemplate, line, keyword);
    }
}

// Notes a keyword of the extension that is misspelt.
void PPDLint::CheckKeyword(const Named& line) {
    const std::string_view keyword = line.name;
    const auto [known, isNew] = meantKeywords.try_emplace(line.name);
    if (isNew && meantKeywords.size() * elementKeywords.size() <= maximumWordsCompared) {
        known->second = meantKeyword(keyword);
    }
    const bool isExtensions = keyword.starts_with("*%ZAN") || keyword.starts_with("*ZAN");
    const bool isComment = keyword.starts_with("*%") && keyword.size() <= 6;
    if (isExtensions || (!known->second.empty() && !isComment)) {
        Note(PPDLintKind::misspeltKeyword, line.line, keyword, {}, known->second);
    }
}

void PPDLint::CheckOtherLines(const ZANPPD& description) {
    const PPDXControls& controls = *description.GetControls();
    std::unordered_map<std::string, std::string> notesByName; // in lower case, without the asterisk
    controls.ForEach([&](const PPDXControl* control) {
        if (control->Type() == CNTL_TYPE::jobNote && control->Keyword() != nullptr) {
            const std::string_view name = control->Keyword();
            notesByName.try_emplace(inLowerCase(name.substr(name.starts_with('*') ? 1 : 0)), name);
        }
    });
    for (const Named& each : otherLines) {
        if (CheckNoteLine(each, notesByName)) {
            continue;
        }
        if (const auto note = linesBehindNotes.find(each.line); note != linesBehindNotes.end()) {
            const std::string& name = note->second;
            Note(PPDLintKind::strayNoteLine, each.line, name, each.name,
                 "*%" + name.substr(name.starts_with('*') ? 1 : 0));
        } else if (controls.FindPopup(each.name.c_str(), true) != nullptr ||
                   controls.FindBoolean(each.name.c_str(), true) != nullptr) {
            if (each.other.empty()) {
                Note(PPDLintKind::optionBehindBlock, each.line, each.name);
            }
        } else {
            CheckKeyword(each);
        }
    }
}

} // namespace torka
