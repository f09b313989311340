// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/FixedControls.h"
#include "PPDX/PPDObjects/Controls/PPDXRangeControl.h"
#include "PPDX/PPDObjects/Interface/LintWords.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"

#include <algorithm>
#include <array>

// The checks of values: their quotes, special options, and what a control makes of its default.

namespace torka {

namespace {

constexpr std::string_view versionKeyword = "*QVUTF8_Version";

// The values that a special option knows, separated by commas. "" for an option that works when it is
// present, whatever its value.
struct SpecialRow {
    std::string_view keyword;
    std::string_view values;
};

constexpr std::array<SpecialRow, 8> specialRows{{
    {versionKeyword, "0123456789"}, // or any other number
    {"*QVCustomPgSzRoundingOff", ""},
    {"*UseSpecialKey", "0,1,2,3,4,5,6,7,8,9,10,11"}, // 0 and 1 are the first key, as is any other text
    {"*UseSpecialAlgorithm", "0,1,2"},               // anything but 2 is DES
    {"*ZANAuthenticateWithLDAP", "True,False"},
    {"*CopierUserAuth", "True,False"},
    {"*Rondure", ""},
    {"*DMT_Injection", "True,False"},
}};

bool isKnownValue(const SpecialRow& row, std::string_view value) {
    if (row.keyword == versionKeyword) {
        return !value.empty() && value.find_first_not_of(row.values) == std::string_view::npos;
    }
    if (row.values.empty()) {
        return value != "False";
    }
    for (std::string_view rest = row.values; !rest.empty();) {
        const std::size_t end = std::min(rest.find(','), rest.size());
        if (rest.substr(0, end) == value) {
            return true;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return false;
}

} // namespace

void PPDLint::CheckQuotes(long line, std::string_view keyword, std::string_view rest) {
    constexpr std::string_view between = " \t:";
    const std::string_view outside = rest.substr(0, rest.find('"'));
    const std::size_t begin = outside.find_first_not_of(between);
    if (begin != std::string_view::npos) {
        const std::size_t end = outside.find_last_not_of(between) + 1;
        Note(PPDLintKind::textWithoutQuotes, line, keyword, outside.substr(begin, end - begin));
    }
}

void PPDLint::CheckOptionValue(long line, std::string_view keyword, std::string_view option,
                               std::string_view rest) {
    CheckQuotes(line, keyword, rest);
    if (rest.find_first_not_of(" \t:") == std::string_view::npos) {
        Note(PPDLintKind::optionWithoutValue, line, keyword, option);
    }
}

void PPDLint::CheckSpecialOption(long line, std::string_view keyword, std::string_view value) {
    const auto* const row = std::ranges::find(specialRows, keyword, &SpecialRow::keyword);
    if (row != specialRows.end()) {
        if (!isKnownValue(*row, value)) {
            Note(PPDLintKind::unknownSpecialValue, line, keyword, value);
        }
        return;
    }
    std::array<std::string_view, specialRows.size()> known;
    std::ranges::transform(specialRows, known.begin(), &SpecialRow::keyword);
    if (const std::string_view meant = closestWord(keyword, known); !meant.empty()) {
        Note(PPDLintKind::unknownSpecialOption, line, keyword, {}, meant);
    }
}

// The value of a note becomes a hexadecimal string, which replaces "(<*KEY>)" as a whole. In a template that
// begins with "%%" and for a document server's access it stays text.
void PPDLint::CheckNoteTemplate(long line, std::string_view keyword, std::string_view postscript) {
    static constexpr std::array<std::string_view, 3> texts{"*QVDSFileName", "*QVDSPassword", "*QVDSUserName"};
    const bool isText = postscript.starts_with("%%") || std::ranges::find(texts, keyword) != texts.end();
    if (!isText && standsInLongerString(postscript, "<" + std::string(keyword) + ">")) {
        Note(PPDLintKind::placeholderInString, line, keyword);
    }
}

void PPDLint::CheckShortcut(long line, const PPDXControl& control) {
    const PPDXElement* const group = control.GetParent();
    std::string_view reason;
    if (group != nullptr && *group == "QVPPInstallableOptions") {
        reason = "it is an installable option";
    } else if (control.IsNoTorkaDriverUI()) {
        reason = "its flags line keeps it out of the pane";
    } else if (isBidiKeyword(control.Keyword())) {
        reason = "its keyword ends in Bidi";
    }
    if (!reason.empty()) {
        Note(PPDLintKind::shortcutNotShown, line, control.Keyword(), reason);
    }
}

void PPDLint::CheckHeldDefault(long line, const PPDXRangeControl& range) {
    const long byDefault = range.DefaultValue();
    const bool isInside = byDefault >= range.MinVal() && byDefault <= range.MaxVal();
    if (isInside && range.GetValue() != byDefault) {
        Note(PPDLintKind::defaultOffStep, line, range.Keyword(),
             std::to_string(byDefault) + " becomes " + std::to_string(range.GetValue()));
    }
}

} // namespace torka
