// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include "PPDX/PPDObjects/Interface/PPDLintTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct DefectCase {
    const char* name;
    std::string lines; // between two healthy popups, *Before and *After
    std::vector<std::string> errors;
    _PARSE_OPTIONS_ options = acceptAll;
    _EXTENSIONS_SUPPORT_ extensions = kAllExtensions;
};

std::string control(const std::string& flags, const std::string& group, const std::string& body) {
    return "*%ZANFlags *Key: " + flags + "\n*%ZANGroup *Key: " + group + "\n" + body;
}

const std::string options = "*Key A/A: \"\"\n*CloseUI: *Key\n";

const std::vector<DefectCase>& defects() {
    static const std::vector<DefectCase> cases{
        {"pageWithoutName", "*%ZANPropPage /Lost: True\n", {"4 "}},
        {"pageTwice", "*%ZANPropPage Page/Again: True\n", {"23 Page"}},
        {"groupNameMissing", "*%ZANGroupName /Lost: True\n", {"12 "}},
        {"subGroupNameMissing", "*%ZANSubGroupName /Lost: True\n", {"37 "}},
        {"groupNameTaken",
         "*%ZANGroupName Group/Again: True\n*%ZANSubGroupName Pane/Again: True\n",
         {"23 Group", "23 Pane"}},
        {"parentNamesMissing",
         "*%ZANParent Group\n*%ZANParent /Pane: True|Rolldown\n",
         {"15 Group", "15 Pane"}},
        {"paneInNoPage",
         "*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: True|Scrollpane\n",
         {"14 Nowhere"}},
        {"rollDownInPage", "*%ZANGroupName G/G: True\n*%ZANParent G/Page: True|Rolldown\n", {"14 Page"}},
        {"rollDownInRollDown",
         "*%ZANGroupName G/G: True\n*%ZANParent G/Group: True|Rolldown\n",
         {"14 Group"}},
        {"parentOfUndeclared", "*%ZANParent Nobody/Pane: True|Rolldown\n", {}},
        {"parentWithoutKind", "*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: True\n", {}},
        {"hiddenParent", "*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: Rolldown\n", {}, kAcceptOrphans},
        {"flagsAlone", "*%ZANFlags *Key: Dynamic\n*Resolution: 600dpi\n", {"16 *Key"}},
        {"flagsWithoutKeyword", "*%ZANFlags\n", {"16 "}},
        {"groupLineOfAnother", "*%ZANFlags *Key:\n*%ZANGroup *Elsewhere: Group\n", {"5 *Key"}},
        {"groupLineAlone", control("", "Group", "*Resolution: 600dpi\n"), {"5 *Key"}},
        {"controlTwice", popupText("Before", "B"), {"23 *Before"}},
        {"blockOfAnothersKeyword",
         "*%ZANFlags *Key:\n*OpenUI *Before/Again: PickOne\n*CloseUI: *Before\n",
         {"23 *Before"}},
        {"openUIWithoutKeyword", control("", "Group", "*OpenUI /Lost: PickOne\n" + options), {"8 *Key"}},
        {"openUIOfNoType", control("", "Group", "*OpenUI *Key/K: PickSome\n" + options), {"31 *Key"}},
        {"makersWithoutKeyword", control("", "Group", "*OpenUIZAN /Lost: PickOne\n" + options), {"10 *Key"}},
        {"makersOfNoType", control("", "Group", "*OpenUIZAN *Key/K: Popup\n" + options), {"34 *Key"}},
        {"noDefault", control("", "Group", "*OpenUI *Key/K: PickOne\n" + options), {"33 *Key"}},
        {"twoDefaults",
         control("", "Group", "*OpenUI *Key/K: PickOne\n*DefaultKey: A\n*DefaultOther: A\n" + options),
         {"11 *Key"}},
        {"twoDefaultsOfBoolean",
         control("", "Group",
                 "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*DefaultKey: True\n*Key True: \"\"\n"
                 "*CloseUI: *Key\n"),
         {"9 *Key"}},
        {"booleanOfOtherOptions",
         control("", "Group", "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*Key True: \"\"\n" + options),
         {"9 *Key"}},
        {"booleanWithoutOptions",
         control("", "Group", "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*CloseUI: *Key\n"),
         {"9 *Key"}},
        {"inScrollPane",
         control("", "Pane", "*OpenUI *Key/K: PickOne\n*DefaultKey: A\n" + options),
         {"29 *Key"}},
        {"orphanRefused",
         "*%ZANFlags *Key:\n*OpenUI *Key/K: PickOne\n*DefaultKey: A\n" + options,
         {"21 *Key"},
         kAcceptHidden},
        {"unknownGroupRefused",
         control("", "Nowhere", "*%ZANRange *Key/K: 0;1;1;0;\"<*Key>\"\n"),
         {"21 *Key"},
         0},
        {"rangeOfAnother", control("", "Group", "*%ZANRange *Elsewhere/K: 0;1;1;0;\"<*Key>\"\n"), {"7 *Key"}},
        {"rangeWithoutDefault", control("", "Group", "*%ZANRange *Key/K: 0;1;1;\"<*Key>\"\n"), {"7 *Key"}},
        {"rangeWithoutStep", control("", "Group", "*%ZANRange *Key/K: 0;9;0;0;\"<*Key>\"\n"), {"7 *Key"}},
        {"floatRangeStepsBack",
         control("", "Group", "*%ZANFloatRange *Key/K: 0;9;-0.5;0;\"<*Key>\"\n"),
         {"7 *Key"}},
        {"rangeWithoutClosingQuote", control("", "Group", "*%ZANRange *Key/K: 0;9;1;0;\"<*Key>\n"), {}},
        {"rangeWithoutPostscript", control("", "Group", "*%ZANUnitRange *Key/K: 0;9;1;0;\n"), {"35 *Key"}},
        {"noteOfAnother", control("", "Group", "*%ZANJobNote *Elsewhere/N: 9|Alpha\n"), {"6 *Key"}},
        {"noteWithoutGroupLine", "*%ZANJobNote *Key/N: 9|Alpha\n", {"6 *Key"}},
        {"switchAtLevel0",
         control("", "Group", "*%ZANJobNote *Key/N: 9|Alpha|OnOfSwitch\n"),
         {"32 *Key"},
         acceptAll,
         0},
        {"commandAtLevel1",
         control("", "Group", "*%ZANJobNote *Key/N: 9|SecPrint|Command\n"),
         {"32 *Key"},
         acceptAll,
         1},
        {"encryptAtLevel2",
         control("", "Group", "*%ZANJobNote *Key/N: 9|Command|Encrypt\n"),
         {"32 *Key"},
         acceptAll,
         2},
        {"constraintOfOne",
         "*UIConstraints: *Before\n*%ZANUIRequires: *Before A\n*%ZANUIConstraints:\n",
         {"36 *Before", "36 *Before", "36 "}},
        {"shortcutToNothing", "*%QVShortcut *Nothing\n", {"19 *Nothing"}},
        {"shortcutToReserved", "*%QVShortcut: *QVHueKeeper\n*%QVShortcut\n", {"19 *QVHueKeeper", "19 "}},
    };
    return cases;
}

// Every defect gives its code and keyword and removes only its own element.
TEST(ZANPPDErrors, EachDefectIsReportedAndItsNeighboursSurvive) {
    for (const DefectCase& each : defects()) {
        SCOPED_TRACE(each.name);
        const auto model = parseText(frame + popupText("Before") + each.lines + popupText("After", "B"),
                                     {.options = each.options, .extensions = each.extensions});
        EXPECT_EQ(errorsOf(*model), each.errors);
        EXPECT_EQ(valueOf(*model, "*Before"), "A");
        EXPECT_EQ(valueOf(*model, "*After"), "B");
        const bool keepsControl = each.errors.empty() || each.errors[0] == "33 *Key";
        EXPECT_TRUE(keepsControl || !find(*model, "*Key"));
    }
}

TEST(ZANPPDErrors, EveryLineEndGivesTheSameModel) {
    for (const std::string end : {"\n", "\r", "\r\n"}) {
        std::string text;
        for (const char c : frame + popupText("Key", "B") + popupText("Last")) {
            text += c == '\n' ? end : std::string(1, c);
        }
        const auto model = parseText(text);
        EXPECT_THAT(errorsOf(*model), IsEmpty());
        EXPECT_EQ(valueOf(*model, "*Key"), "B");
        EXPECT_EQ(model->GetGroups()->Count(), 3U);
    }
}

TEST(ZANPPDErrors, AFatalErrorStandsAlone) {
    EXPECT_THAT(errorsOf(*parseText("*PPD-Adobe: \"4.2\"\n" + popupText("Key"))), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("\n*PPD-Adobe: \"4.3\"\n")), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("\xFF\xFE\x01binary")), ElementsAre("28 "));
    EXPECT_THAT(errorsOf(*parseText("")), ElementsAre("18 "));
    EXPECT_THAT(errorsOf(*parseFile("/nonexistent/file.ppd")), ElementsAre("18 "));
    EXPECT_THAT(errorsOf(*parseFile("/")), ElementsAre("18 "));
    const ZANPPD noFile(CFURLCreateWithString(cfString("http://example.com/x.ppd")), acceptAll, nullptr);
    EXPECT_THAT(errorsOf(noFile), ElementsAre("18 "));
}

TEST(ZANPPDErrors, EmptyCollectionsAreReportedLast) {
    EXPECT_THAT(errorsOf(*parseText("*PPD-Adobe: \"4.3\"")), ElementsAre("25 ", "26 ", "27 "));
    EXPECT_THAT(errorsOf(*parseText(frame)), ElementsAre("27 "));
}

TEST(ZANPPDErrors, ParsingStopsAtTheFirstErrorWhenAsked) {
    const std::string text = frame + popupText("Before") + "*%ZANFlags\n" + popupText("After");
    EXPECT_NE(find(*parseText(text), "*After"), nullptr);
    const auto stopped = parseText(text, {.stopOnFirstError = true});
    EXPECT_THAT(errorsOf(*stopped), ElementsAre("16 "));
    EXPECT_NE(find(*stopped, "*Before"), nullptr);
    EXPECT_EQ(find(*stopped, "*After"), nullptr);
}

TEST(ZANPPDLint, NotesTellKindLineAndText) {
    const std::string longLine = "*Long " + std::string(300, 'x');
    PPDLint lint;
    const auto model = parseText(
        "*PPD-Adobe: \"4.3\"\r\n*LanguageVersion: English\r\n*LanguageEncoding: UTF-8\r\n"  // lines 1 to 3
        "*%ZANGroupName Lonely/L: True\r\n"                                                 // 4
        "*%ZANFlags *Key:\r\n*%ZANGroup *Key: Nowhere\r\n*OpenUI *Key/Caf<E9>: PickOne\r\n" // 5 to 7
        "*DefaultKey: C\r\n*Key A: \"a\r\n b\"\r\n*Key B: \"\"\r\n*CloseUI: *Key\r\n"       // 8 to 12
        "*OpenUI *Plain/P: PickOne\r\n*CloseUI: *Plain\r\n"                                 // 13, 14
        "*UIConstraints: *Key A *Plain X\r\n"                                               // 15
        "*UIConstraints: *Key Z *Missing\r\n" +
            longLine + "\r\n*FileVersion: \"1\r\n*ModelName: \"a\xFF\"\r\n" + // 17 to 19
            std::string("*PCFileName: \"A\0B\"\r\n", 20) +                    // 20
            "*%ZANFlags *Note:\r\n*%ZANGroup *Note: Nowhere\r\n"              // 21, 22
            "*%ZANJobNote *Note/N: 99999999999999999999\r\n"                  // 23
            "*%ZANFlags *Last:\r\n*OpenUI *Last/L: PickOne\r\n"               // 24, 25
            "*DefaultLast: A\r\n*Last A: \"\r\n*% End of PPD file\r\n" +      // 26 to 28
            longLine,
        {.lint = &lint});
    EXPECT_THAT(errorsOf(*model), ElementsAre("25 ", "26 "));
    std::vector<std::string> notes;
    for (const PPDLintNote& note : lint.Notes()) {
        notes.push_back(std::to_string(note.line) + " " + ppdLintName(note.kind) + " " + note.keyword + " " +
                        note.text);
    }
    EXPECT_THAT(notes, ElementsAre("0 noMakerVersion *%QVVersion ", "4 unplacedGroup Lonely ",
                                   "6 unknownGroup *Key Nowhere", "7 untranslatableText *Key Caf<E9>",
                                   "8 unknownDefault *Key C", "16 unknownConstraintOption *Key Z",
                                   "16 unknownConstraintKeyword *Missing ", "17 cutLine *Long ",
                                   "18 unclosedQuote *FileVersion ", "19 unreadableByte *ModelName 0xFF",
                                   "20 unreadableByte *PCFileName NUL", "20 unclosedQuote *PCFileName ",
                                   "22 unknownGroup *Note Nowhere", "23 badNumber *Note 99999999999999999999",
                                   "24 blockInNoGroup *Last ", "25 unclosedBlock *Last the end of the file",
                                   "27 unclosedQuote *Last "));
    // Invalid text still gives a readable name.
    EXPECT_EQ(utf8Text(find(*model, "*Key")->CFStringUserName()), "Caf\xEF\xBF\xBD");
}

TEST(ZANPPDLint, ADefaultTextIsHeldToTheRulesOfItsNote) {
    const auto noteText = [](const std::string& keyword, const std::string& declared, const char* text) {
        return "*%ZANFlags *" + keyword + ":\n*%ZANGroup *" + keyword + ": Group\n*%ZANJobNote *" + keyword +
               "/N: " + declared + "\n*%Default" + keyword + ": \"" + text + "\"\n";
    };
    PPDLint lint;
    parseText(frame + noteText("Long", "4|NoComma", "a,b,c") + noteText("Empty", "4|Required", "") +
                  noteText("Good", "4|LengthReq", "abcd"),
              {.lint = &lint});
    std::vector<std::string> notes;
    for (const PPDLintNote& note : lint.Notes()) {
        notes.push_back(std::to_string(note.line) + " " + ppdLintName(note.kind) + " " + note.keyword + " " +
                        note.text);
    }
    EXPECT_THAT(notes, ElementsAre("0 noMakerVersion *%QVVersion ",
                                   "14 badDefaultNote *Long must have at most 4 characters",
                                   "14 badDefaultNote *Long must not hold a comma"));
}

} // namespace
} // namespace torka::tests
