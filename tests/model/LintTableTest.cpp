// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDX/PPDObjects/Interface/LintWords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

// One table: small descriptions and what lint says about each. samples/torka-defects.ppd shows more mistakes.

namespace torka::tests {
namespace {

// Twelve lines: the body of a case begins on line 13.
const std::string opening = frame + "*%QVVersion: \"4.2\"\n";
constexpr long openingLines = 12;

// The findings as "LINE WHAT". Lines count from the body's first one; line 0 is the whole file.
std::vector<std::string> linted(const std::string& text, long linesBefore, CFArrayRef listed = nullptr) {
    PPDLint lint;
    lint.SetListedFileNames(std::move(listed));
    const auto model = parseText(text, {.lint = &lint});
    for (const PPDXErrorObj* error = model->Errors()->First(); error; error = model->Errors()->Next()) {
        EXPECT_FALSE(ppdErrRemedy(error->Code()).empty());
    }
    for (const PPDLintNote& each : lint.Notes()) {
        EXPECT_EQ(ppdLintMessage(each).find("\n"), std::string::npos);
    }
    std::vector<std::string> result;
    for (const auto& [line, what] : findingsOf(*model, lint)) {
        result.push_back(std::to_string(line == 0 ? 0 : line - linesBefore) + " " + what);
    }
    return result;
}

struct LintCase {
    std::string body;
    std::vector<std::string> findings;
};

const std::string flagLines = "*%ZANFlags *K:\n*%ZANGroup *K: Group\n";
const std::string open = flagLines + "*OpenUI *K/K: PickOne\n*DefaultK: A\n"; // lines 1 to 4
const std::string a = "*K A/A: \"\"\n";
const std::string close = "*CloseUI: *K\n";
const std::string whole = open + a + close;
const std::string note = flagLines + "*%ZANJobNote *K/K: 9\n"; // lines 1 to 3
const std::string goodRange = "*%ZANRange *K/K: 0;9;1;5;\"<*K>\"\n";

std::string range(const std::string& numbers, const std::string& postscript = "<*K>") {
    return flagLines + "*%ZANRange *K/K: " + numbers + "\"" + postscript + "\"\n";
}

std::vector<LintCase> lintCases() {
    // An option whose feature block has this many bytes.
    const auto option = [](std::size_t size) {
        std::string text = "*K B: \"";
        for (size -= std::string_view("%%BeginFeature: *K B\n\n%%EndFeature\n").size(); size > 200;
             size -= 200) {
            text += std::string(199, 'x') + "\n";
        }
        return text + std::string(size, 'x') + "\"\n";
    };
    const std::string ab = popupText("M") + popupText("N"); // lines 1 to 14
    return {
        // Groups and pages
        {"*%ZANGroupName P/P: True\n*%ZANParent P/Page: True|Scrollpane\n" + whole, {"2 secondScrollPane"}},
        {"*%ZANParent Group/Pane: True|Rolldown\n" + whole, {"1 groupPlacedTwice"}},
        {"*%ZANPropPage P/P: true\n" + whole, {"1 hiddenByFlag?True"}},
        {"*%ZANPropPage P/P: True|Ture|Treu|app|pap|Tr|Page\n" + whole,
         {"1 unknownFlag?True", "1 unknownFlag?True", "1 unknownFlag?App", "1 unknownFlag?App",
          "1 unknownFlag", "1 unknownFlag"}},
        {"*%ZANGroupName G/G: Ture\n*%ZANParent G/Pane: True|Rolldown\n" + whole, {"1 hiddenByFlag?True"}},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Pane: True|RollDown\n" + whole,
         {"1 unplacedGroup", "2 unknownFlag?Rolldown"}},
        {"*%ZANGroupName G/G:\n*%ZANParent G/Pane: True|Rolldown\n*%ZANFlags *K:\n*%ZANGroup *K: G\n" +
             goodRange,
         {"1 hiddenControls"}},
        {"*%ZANFlags *K: Dynamik\n" + open.substr(open.find('\n') + 1) + a + close,
         {"1 unknownFlag?Dynamic"}},
        {"*%ZANFlags *K:\n*OpenUI *K/K: PickOne\n*DefaultK: A\n" + a + close, {"1 blockInNoGroup"}},
        {"*%ZANFlags *K: NoTorkaDriverUI\n*OpenUI *K/K: PickOne\n*DefaultK: A\n" + a + close, {}},
        {"*%ZANFlags *K: DriverUserDisplayHidden\n*OpenUI *K/K: PickOne\n*DefaultK: A\n" + a + close, {}},
        {"*%ZANFlags *K:\n*%ZANGroup *K: Goup\n" + goodRange, {"2 unknownGroup?Group"}},
        {"*%ZANFlags *K:\n*%ZANGroup *K: Pane\n*%ZANJobNote *K/K: 9\n", {"1 noteInScrollPane"}},
        {whole + goodRange, {"7 strayControlLine"}},
        // Job notes
        {flagLines + "*%ZANJobNote *K/K: 9|Alfa\n", {"3 unknownJobNoteFlag?Alpha"}},
        {flagLines + "*%ZANJobNote *K/K: 3\n*%DefaultK: \"long\"\n", {"3 badDefaultNote"}},
        {note + "\n*Resolution: 1dpi\n*%DefaultK: \"x\"\n*%K: \"(<*K>) pop\"\n",
         {"6 strayNoteLine", "7 strayNoteLine"}},
        {note + "*%K: \"(<*K>) pop\"\n*%DefaultK: \"x\"\n", {"5 strayNoteLine"}},
        {note + "*DefaultK: \"x\"\n*K: \"(<*K>) pop\"\n", {"4 strayNoteLine", "5 strayNoteLine"}},
        {note + "*%DefaultM: \"x\"\n", {"4 otherDefault"}},
        {note + "*%K: \"(<K>) pop\"\n", {"4 noPlaceholder"}},
        {note + "*%DefaultK: \"caf\xE9\"\n", {}},
        {note + "*%DefaultK: \"caf\xC3\xA9\"\n", {"4 otherEncoding"}},
        {"*LanguageEncoding: UTF-8\n" + note + "*%DefaultK: \"caf\xE9\"\n", {"5 untranslatableText"}},
        {"*LanguageEncoding: JIS83-RKSJ\n" + note + "*%DefaultK: \"\xE3\x81\xAA\"\n", {"5 otherEncoding"}},
        {"*LanguageEncoding: JIS83-RKSJ\n" + note + "*%DefaultK: \"\x82\xC8<82>\"\n", {}},
        {"*LanguageEncoding: JIS83-RKSJ\n" + note + "*%DefaultK: \"\xC3\xA9\"\n", {}},
        {flagLines + "*%ZANJobNote *K/K: nine\n", {"3 badNumber"}},
        {flagLines + "*%ZANJobNote *K/K: 4|NoComma\n*%DefaultK: \"a,b,c\"\n",
         {"3 badDefaultNote", "3 badDefaultNote"}},
        {flagLines + "*%ZANJobNote *K/K: 4|Required\n*%DefaultK: \"\"\n", {}},
        // Ranges
        {range("0;9;2: 0;5;"), {"3 textAfterNumber"}},
        {range("0;9.5;1;5;"), {"3 textAfterNumber"}},
        {range("9;0;1;5;"), {"3 swappedBounds"}},
        {range("0;9;1;12;"), {"3 defaultOutsideBounds"}},
        {range("3;9;1;1;"), {"3 defaultOutsideBounds"}},
        {range("0;9;1;5;7;"), {"3 extraNumber"}},
        {range("0;9;1;5;", "5 pop"), {"3 noPlaceholder"}},
        // Options
        {flagLines + "*OpenUI *K/K: PickOne\n*DefaultKK: A\n" + a + close, {"4 otherDefault"}},
        {open + a + "*%QVShortcut *K\n" + flagLines + goodRange, {"3 unclosedBlock", "7 23"}},
        {open + "*K A: \"\n*% End of PPD file\n", {"3 unclosedBlock", "5 unclosedQuote"}},
        {open + a + a + close, {"6 optionTwice"}},
        {"*%ZANFlags *Q:\n*%ZANGroup *Q: Group\n*OpenUI *K/K: PickOne\n*DefaultK: A\n" + a + close,
         {"3 blockOfOtherKey"}},
        {open + a + "*k B/B: \"\"\n" + close, {"6 optionOfOtherKey?*K"}},
        {open + a + "*Resolution B/B: \"\"\n*?Resolution: \"\"\n*Resolution: \"\"\n" + close,
         {"6 optionOfOtherKey"}},
        {"*%ZANFlags *Tray:\n*%ZANGroup *Tray: Group\n*OpenUI *Tray/T: PickOne\n*DefaultTray: A\n"
         "*Tray A: \"\"\n*Try B: \"\"\n*TrayB C: \"\"\n*CustomTray True: \"\"\n*CloseUI: *Tray\n",
         {"6 optionOfOtherKey?*Tray", "7 optionOfOtherKey?*Tray"}},
        {open + a + option(1024) + close, {}},
        {open + a + option(1025) + close, {"6 longBlock"}},
        {open + a + "*K B: \"{ (text) } }\"\n" + close, {"6 unbalancedPostscript"}},
        {open + a + "*K B: \"(a (b) \"\n*K C: \"<0g>\"\n*K D: \"<< /A <0f> >> % ( }\"\n" + close,
         {"6 unbalancedPostscript", "7 unbalancedPostscript"}},
        {"*%ZANSpecialOption *S: 1\n*%ZANSpecialOption *S: 2\n" + whole, {"2 specialOptionTwice"}},
        // Lines, texts and encoding
        {"*ShortNickName: \"a\xFF\"\n" + whole, {"1 unreadableByte"}},
        {std::string("*ModelName: \"A\0B\"\n", 18) + whole, {"1 unreadableByte", "1 unclosedQuote"}},
        {open + "*K A/Caf<C3A9>: \"\"\n" + close, {"5 otherEncoding"}},
        {open + "*K A/Caf<E9>: \"\"\n" + close, {}},
        {open + "*K A/5 <80>: \"\"\n" + close, {"5 otherEncoding"}},
        {"*LanguageEncoding: UTF-8\n" + open + "*K A/Caf<E9>: \"\"\n" + close, {"6 untranslatableText"}},
        {"*LanguageEncoding: ISOLatin\n" + whole, {"1 unknownEncoding?ISOLatin1"}},
        {"*LanguageVersion: Englisch\n" + whole, {"1 unknownLanguage?English"}},
        {"*LanguageVersion: french\n" + whole, {"1 unknownLanguage?French"}},
        {"*LanguageVersion: French-Canadian\n" + whole, {}},
        {"*%ZANFlag *K:\n" + whole, {"1 misspeltKeyword?*%ZANFlags"}},
        {"*ZANFlags *K:\n" + whole, {"1 misspeltKeyword?*%ZANFlags"}},
        {"*%ZANSomething *K:\n*% ZANFlags\n*%Comment\n" + whole, {"1 misspeltKeyword"}},
        {"*UIconstraints: *K A *M B\n" + whole, {"1 misspeltKeyword?*UIConstraints"}},
        // Constraints
        {ab + "*UIConstraints: *M *N B\n*UIConstraints: *N B *M A\n*UIConstraints: *N B *M B\n", {}},
        {ab + "*UIConstraints: *M A *N B\n*UIConstraints: *N *M A\n", {"16 oneWayConstraint"}},
        {ab + "*UIConstraints: *Mm *N\n", {"15 unknownConstraintKeyword?*M"}},
        {"*OpenUI *S/S: PickOne\n*DefaultS: A\n*S A: \"\"\n*CloseUI: *S\n" + ab +
             "*UIConstraints: *S A *M B\n",
         {}},
        // The pane
        {"*PCFileName: \"OTHER.PPD\"\n" + whole, {"0 unlistedFileName"}},
    };
}

TEST(LintTable, EachMistakeIsToldWithItsLineAndOnlyIt) {
    const CFArrayRef listed = CFArrayCreate({cfString("test.ppd")});
    for (const LintCase& each : lintCases()) {
        EXPECT_EQ(linted(opening + each.body, openingLines, listed), each.findings) << each.body;
    }
}

TEST(LintTable, AHeaderThatCostsThePaneOrTheTextsIsTold) {
    const std::string pages = frame.substr(frame.find("*%ZANPropPage"));
    const std::string body = pages + whole; // lines 1 to 13
    const std::string accented = note + "*%DefaultK: \"caf\xE9\"\n";
    const std::string name = "*PCFileName: \"A.PPD\"\n";
    const std::string version = "*%QVVersion: \"4.2\"\n";
    const std::string accent = "*%ZANPropPage P/Caf<E9>: True\n";
    const std::string first = "*PPD-Adobe: \"4.3\"\n";
    EXPECT_EQ(linted(first + name + body, 2), std::vector<std::string>{"0 noMakerVersion"});
    EXPECT_EQ(linted(first + version + body, 2), std::vector<std::string>{"0 noFileName"});
    EXPECT_EQ(linted(first + name + version + accent + body + "*LanguageEncoding: ISOLatin1\n", 3),
              std::vector<std::string>{"1 textBeforeEncoding"});
    EXPECT_EQ(linted(first + name + version + pages + accented + "*LanguageEncoding: ISOLatin1\n", 10),
              std::vector<std::string>{"4 textBeforeEncoding"});
    EXPECT_EQ(linted(first + name + version + "*LanguageVersion: English\n*LanguageEncoding: ISOLatin1\n" +
                         accent + body,
                     5),
              std::vector<std::string>{});
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
    const std::set<std::string> emptyModel{"0 25", "0 26", "0 27"}; // the example of a header alone
    std::size_t examples = 0;
    for (const std::string& example : examplesOf(readFile(pagePath))) {
        ++examples;
        const bool isWhole = example.starts_with("*PPD-Adobe");
        const std::string before = isWhole ? "" : opening + surroundingsOf(example);
        for (const std::string& finding : linted(before + example, 0)) {
            const bool isMeant =
                finding.ends_with(" requirement") || (isWhole && emptyModel.contains(finding));
            EXPECT_TRUE(isMeant) << finding << "\n" << before + example;
        }
    }
    EXPECT_GT(examples, 12U);
    // The first one is said to be a whole description.
    EXPECT_EQ(linted(examplesOf(readFile(pagePath)).front(), 0), std::vector<std::string>{});
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
