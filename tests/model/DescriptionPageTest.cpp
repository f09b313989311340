// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDX/PPDObjects/Interface/LintWords.h"

#include <map>
#include <set>
#include <sstream>

// What docs/extended-ppd.md says, and the judge of unbalanced PostScript.

namespace torka::tests {
namespace {

std::vector<std::string> linted(const std::string& text) {
    PPDLint lint;
    const auto model = parseText(text, {.lint = &lint});
    std::vector<std::string> names;
    for (const auto& [line, name] : findingsOf(*model, lint)) {
        names.push_back(name);
    }
    return names;
}

// The examples of a page: its blocks that begin with "```ppd".
std::vector<std::string> examplesOf(const std::string& page) {
    static const std::string mark = "```ppd\n";
    std::vector<std::string> result;
    for (std::size_t at = page.find(mark); at != std::string::npos; at = page.find(mark, at)) {
        at += mark.size();
        result.push_back(page.substr(at, page.find("```", at) - at));
    }
    return result;
}

// What an example takes for granted: the roll-downs that it names, and the options of its constraint lines.
std::string surroundingsOf(const std::string& example) {
    std::string text = popupText("Filler");
    std::set<std::string> groups;
    std::map<std::string, std::set<std::string>> options;
    std::istringstream lines(example);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string first, word, key;
        words >> first;
        if (first == "*%ZANGroup" && words >> key >> word) {
            groups.insert(word);
        }
        const bool isConstraint = first.starts_with("*UI") || first.starts_with("*%ZANUI");
        while (isConstraint && words >> word) {
            key = word.starts_with('*') ? word : key;
            options[key].insert(word.starts_with('*') ? "Other" : word);
        }
    }
    for (const std::string& group : groups) {
        text += "*%ZANSubGroupName " + group + "/G: True\n*%ZANParent " + group + "/Pane: True|Rolldown\n";
    }
    for (const auto& [key, names] : options) {
        text += "*%ZANFlags " + key + ":\n*%ZANGroup " + key + ": Group\n*OpenUI " + key +
                "/O: PickOne\n*Default" + key.substr(1) + ": Other\n" + key + " Other: \"\"\n";
        for (const std::string& name : names) {
            text += name == "Other" ? "" : key + " " + name + ": \"\"\n";
        }
        text += "*CloseUI: " + key + "\n";
    }
    return text;
}

const std::string pagePath = TORKA_SOURCE_DIR "/docs/extended-ppd.md";

TEST(DescriptionPage, ItsExamplesCanBeCopiedAsTheyStand) {
    const std::set<std::string> emptyModel{"25", "26", "27"}; // the example of a header alone
    std::size_t examples = 0;
    for (const std::string& example : examplesOf(readFile(pagePath))) {
        ++examples;
        const bool isWhole = example.starts_with("*PPD-Adobe");
        const std::string before = isWhole ? "" : frame + "*%QVVersion: \"4.2\"\n" + surroundingsOf(example);
        for (const std::string& finding : linted(before + example)) {
            const bool isMeant = finding == "requirement" || (isWhole && emptyModel.contains(finding));
            EXPECT_TRUE(isMeant) << finding << "\n" << before + example;
        }
    }
    EXPECT_GT(examples, 12U);
    // The first one is said to be a whole description.
    EXPECT_EQ(linted(examplesOf(readFile(pagePath)).front()), std::vector<std::string>{});
}

TEST(DescriptionPage, ItListsWhatLintSaysAndWhatToDo) {
    std::string page = readFile(pagePath);
    for (int i = 0; i <= static_cast<int>(PPDLintKind::unlistedFileName); ++i) {
        const PPDLintNote meant{static_cast<PPDLintKind>(i), 0, "*KEY", "\u2026", {}};
        std::string row = ppdLintMessage(meant) + " \x01 " + ppdLintRemedy(meant);
        for (const char special : {'*', '<', '|'}) {
            for (std::size_t at = 0; (at = row.find(special, at)) != std::string::npos; at += 2) {
                row.insert(at, 1, '\\');
            }
        }
        row = std::string("| `") + ppdLintName(meant.kind) + "` | " + row.replace(row.find('\x01'), 1, "|") +
              " |\n";
        EXPECT_NE(page.find(row), std::string::npos) << row;
    }
    std::erase(page, '`');
    for (std::int16_t code = 1; code < 40; ++code) {
        const bool isListed = *ppdErrName(code) != '\0' && !isFatalPPDErr(code);
        EXPECT_TRUE(!isListed || page.find(ppdErrRemedy(code)) != std::string::npos) << code;
    }
}

// Ghostscript judges: text that the scanner calls balanced makes one executable array, other text does not.
TEST(LintWords, WhatIsUnbalancedForGhostscriptIsUnbalancedForLint) {
    const std::vector<std::string> texts{
        "",          "{ 1 }",     "{ 1",      "1 }",       "(a)",     "(a",    "a)",         "(a \\) b)",
        "(a \\( b)", "(a (b) c)", "(a (b c)", "<0f 1>",    "<0fg>",   "<0f",   "<< /A 1 >>", "% ( {\n1",
        "(% ) 1",    "{ (}) }",   "{ <7d> }", "<~87cUR~>", "<~87cUR", "{ } }", "(\\\\) 1",   "(\\\\\\) 1"};
    std::string program;
    std::string expected;
    for (const std::string& text : texts) {
        program += "(";
        for (const char c : text) {
            program += std::string(c == '(' || c == ')' || c == '\\' ? "\\" : "") + c;
        }
        program += ") { { token { pop } { exit } ifelse } loop } stopped { (unbalanced) } { (balanced) } "
                   "ifelse = clear\n";
        expected += postscriptFault(text, {}).empty() ? "balanced\n" : "unbalanced\n";
    }
    EXPECT_EQ(runCommand({"gs", "-q", "-dNODISPLAY", "-dBATCH", "-dNOPAUSE", "-"}, program).output, expected);
}

} // namespace
} // namespace torka::tests
