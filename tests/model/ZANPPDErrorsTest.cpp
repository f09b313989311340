// SPDX-License-Identifier: Apache-2.0
#include "tests/model/ZANPPDTestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace torka::tests {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct DefectCase {
    std::string lines; // between two healthy popups, *Before and *After
    std::vector<std::string> errors;
    _PARSE_OPTIONS_ options = acceptAll;
    _EXTENSIONS_SUPPORT_ extensions = kAllExtensions;
};

std::string control(const std::string& flags, const std::string& group, const std::string& body) {
    return "*%ZANFlags *Key: " + flags + "\n*%ZANGroup *Key: " + group + "\n" + body;
}

const std::string keyOptions = "*Key A/A: \"\"\n*CloseUI: *Key\n";

std::vector<DefectCase> defects() {
    return {
        {"*%ZANGroupName Group/Again: True\n*%ZANSubGroupName Pane/Again: True\n", {"23 Group", "23 Pane"}},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: True|Scrollpane\n", {"14 Nowhere"}},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Group: True|Rolldown\n", {"14 Group"}},
        {"*%ZANParent Nobody/Pane: True|Rolldown\n", {}},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: True\n", {}},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Nowhere: Rolldown\n", {}, kAcceptOrphans},
        {"*%ZANFlags\n", {"16 "}},
        {"*%ZANFlags *Key:\n*OpenUI *Before/Again: PickOne\n*CloseUI: *Before\n", {"23 *Before"}},
        {control("", "Group",
                 "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*DefaultKey: True\n*Key True: \"\"\n"
                 "*CloseUI: *Key\n"),
         {"9 *Key"}},
        {control("", "Group", "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*CloseUI: *Key\n"), {"9 *Key"}},
        {"*%ZANFlags *Key:\n*OpenUI *Key/K: PickOne\n*DefaultKey: A\n" + keyOptions,
         {"21 *Key"},
         kAcceptHidden},
        {control("", "Nowhere", "*%ZANRange *Key/K: 0;1;1;0;\"<*Key>\"\n"), {"21 *Key"}, 0},
        {control("", "Group", "*%ZANFloatRange *Key/K: 0;9;-0.5;0;\"<*Key>\"\n"), {"7 *Key"}},
        {control("", "Group", "*%ZANRange *Key/K: 0;9;1;0;\"<*Key>\n"), {}},
        {control("", "Group", "*%ZANJobNote *Key/N: 9|Alpha|OnOfSwitch\n"), {"32 *Key"}, acceptAll, 0},
        {control("", "Group", "*%ZANJobNote *Key/N: 9|SecPrint|Command\n"), {"32 *Key"}, acceptAll, 1},
        {control("", "Group", "*%ZANJobNote *Key/N: 9|Command|Encrypt\n"), {"32 *Key"}, acceptAll, 2},
        {"*UIConstraints: *Before\n*%ZANUIRequires: *Before A\n*%ZANUIConstraints:\n",
         {"36 *Before", "36 *Before", "36 "}},
        {"*%QVShortcut: *QVHueKeeper\n*%QVShortcut\n", {"19 *QVHueKeeper", "19 "}},
    };
}

// Every defect gives its code and keyword and removes only its own element. The sample with defects has the
// other ones.
TEST(ZANPPDErrors, EachDefectIsReportedAndItsNeighboursSurvive) {
    for (const DefectCase& each : defects()) {
        SCOPED_TRACE(each.lines);
        const auto model = parseText(frame + popupText("Before") + each.lines + popupText("After", "B"),
                                     {.options = each.options, .extensions = each.extensions});
        EXPECT_EQ(errorsOf(*model), each.errors);
        EXPECT_EQ(valueOf(*model, "*Before"), "A");
        EXPECT_EQ(valueOf(*model, "*After"), "B");
        const bool keepsControl = each.errors.empty() || each.errors[0] == "33 *Key";
        EXPECT_TRUE(keepsControl || !find(*model, "*Key"));
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

// A description that is as large as the limits allow is read; one more ends the parse.
TEST(ZANPPDErrors, EachElementCountsUpToTheLimit) {
    const std::size_t inFrame = 7;
    const std::vector<std::pair<std::string, std::size_t>> cases{
        {"*%ZANPropPage Page2/P: True\n", 1},
        {"*%ZANGroupName G/G: True\n*%ZANParent G/Pane: True|Rolldown\n", 2},
        {"*%ZANSubGroupName G/G: True\n", 1},
        {popupText("Key"), 4},
        {control("One|Two|Three", "Group", "*%ZANRange *Key/K: 0;1;1;0;\"<*Key>\"\n"), 4},
        {control("", "Group",
                 "*OpenUI *Key/K: Boolean\n*DefaultKey: True\n*Key True: \"\"\n*CloseUI: *Key\n"),
         2},
        {"*%ZANJobNote *Key/Note: \n", 1},
        {"*%QVShortcut *Key\n", 1},
        {"*%ZANSpecialOption *Key: 1\n", 1},
        {"*UIConstraints: *A 1 *B\n*%ZANUIRequires: *A *B\n", 2}};
    for (const auto& [lines, count] : cases) {
        ParseSettings settings;
        settings.limits.elements = inFrame + count;
        const std::string text = frame + lines + "*% the last line\n";
        const auto read = parseText(text, settings);
        EXPECT_FALSE(read->HasFatalError()) << lines;
        --settings.limits.elements;
        const auto ended = parseText(text + popupText("Later"), settings);
        EXPECT_TRUE(ended->HasFatalError()) << lines;
        EXPECT_EQ(errorsOf(*ended).back(), "38 ") << lines;
        EXPECT_EQ(find(*ended, "*Later"), nullptr) << lines;
    }
}

TEST(ZANPPDErrors, AFileMayHaveTheMaximumOfBytes) {
    ParseSettings settings;
    settings.limits.bytes = frame.size();
    EXPECT_FALSE(parseText(frame, settings)->HasFatalError());
    --settings.limits.bytes;
    EXPECT_THAT(errorsOf(*parseText(frame, settings)), ElementsAre("39 "));
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

} // namespace
} // namespace torka::tests
