// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"
#include "PPDX/Utilities/ModelState.h"
#include "Settings.h"
#include "tests/model/ModelFixtures.h"
#include "tests/support/TestSupport.h"

#include <cfloat>
#include <climits>
#include <cmath>
#include <regex>

namespace torka {
namespace {

using namespace tests;

TEST(Element, DisplayOptionsDecideWhatIsShown) {
    PPDXControl parent(CNTL_TYPE::none, definitionOf("*P"));
    for (const bool visible : {false, true}) {
        for (const bool orphan : {false, true}) {
            ControlDefinition definition = definitionOf("*X");
            definition.visible = visible;
            PPDXControl control(CNTL_TYPE::none, definition);
            control.SetParent(orphan ? nullptr : &parent);
            const bool expected[] = {visible && !orphan, visible, !orphan, true, true};
            for (_DISPLAY_OPTIONS_ options = 0; options < 5; ++options) {
                EXPECT_EQ(control.OkayToDisplay(options), expected[options]) << visible << orphan << options;
            }
        }
    }
}

TEST(Control, FeaturesWithoutTheirBlock) {
    const PPDXControl control(CNTL_TYPE::none, definitionOf("*QVX"));
    for (const std::string text : {"a b\n", ""}) {
        const auto ps = reinterpret_cast<const unsigned char*>(text.data());
        EXPECT_EQ(emitted([&](unsigned char* out) {
                      return control.GeneratePSOutputData(out, ps, static_cast<long>(text.size()), "O",
                                                          false);
                  }),
                  text.empty() ? "\n" : text);
    }
}

TEST(Control, InjectionTable) {
    const CNTL_TYPE note = CNTL_TYPE::jobNote;
    const std::tuple<CNTL_TYPE, const char*, const char*, const char*, const char*> cases[] = {
        {note, "*QVNote", "(<*QVNote>) exec", "AB", "<4142> exec"},
        {note, "*QVNote", "<*QVNote> (<*QVNote>) ((<*QVNote>))", "A", "<41> <41> (<41>)"},
        {note, "*QVNote", "(<*QVNote>)", "", "()"},
        {note, "*QVNote", "(<*QVNote>)", "a\\b\xFF", "<615C62FF>"},
        {note, "*QVNote", "%%Note: (<*QVNote>)", "a\\b", "%%Note: (a\\b)"},
        {note, "*QVNote", "%Note: <*QVNote>", "a", "%Note: <61>"},
        {note, "*QVNote", "(<*Other>)", "a", "(<*Other>)"},
        {note, "*QVDSFileName", "(<*QVDSFileName>)", "a\\b", "(a\\\\b)"},
        {note, "*QVDSPassword", "<*QVDSPassword>", "x", "x"},
        {note, "*QVDSUserName", "<*QVDSUserName>", "x", "x"},
        // A value with balanced parentheses keeps its bytes, whatever else it has.
        {note, "*QVDSUserName", "(<*QVDSUserName>)", "a (b) % {\n", "(a (b) % {\n)"},
        {note, "*QVDSUserName", "% (\n(by <*QVDSUserName>) <*QVDSUserName>", ") stop",
         "% (\n(by \\051 stop) (\\051 stop)"},
        {note, "*QVNote", "%% <*QVNote>\n<*QVNote> (<*QVNote>)", "(5\n)", "%% (5 )\n((5 )) ((5 ))"},
        // A value that equals its own placeholder is inserted once. So is one that forms a new placeholder
        // together with its surroundings.
        {CNTL_TYPE::range, "*R", "<*R> <*R>", "<*R><*R>", "<*R><*R> <*R><*R>"},
        {CNTL_TYPE::range, "*R", "<<*R>*R>", "<*R>", "<<*R>*R>"},
        {CNTL_TYPE::range, "*R", "1 <*R> 2", "\\7", "1 \\\\7 2"},
        {CNTL_TYPE::range, "*R", "", "7", ""},
    };
    for (const auto& [type, keyword, ps, value, expected] : cases) {
        const PPDXControl control(type, definitionOf(keyword, ps));
        std::string out = "before";
        EXPECT_EQ(control.Inject(keyword, control.PSData(), control.PSLength(), value, out),
                  static_cast<long>(std::string(expected).size()));
        EXPECT_EQ(out, expected) << ps << " with " << value;
    }
    // A small template and a value whose combination would fill the memory.
    std::string manyPlaces;
    for (int i = 0; i < 100'000; ++i) {
        manyPlaces += "<*R>";
    }
    const PPDXControl control(CNTL_TYPE::range, definitionOf("*R", manyPlaces));
    std::string out;
    EXPECT_EQ(
        control.Inject("*R", control.PSData(), control.PSLength(), std::string(100'000, 'x').c_str(), out),
        0);
    EXPECT_TRUE(out.empty());
}

// No text that a person types ends its string or its comment, and an interpreter reads exactly its bytes.
TEST(Control, InjectedNotesAreWholeStringsToAnInterpreter) {
    std::string everyByte = "()(( \\) <4142> ~> % /x { } \r\n quit";
    for (int c = 0x80; c < 0x100; ++c) {
        everyByte += static_cast<char>(c);
    }
    const std::string texts[] = {
        "Report (final", "draft) quit",      "\\ \\",      "the end\\",  ")(",         "a\\)(b",
        "((()",          "(whole) \\( quit", "line\nquit", "line\rquit", "page\fquit", "} quit {",
        "> quit <",      "quit quit",        everyByte};
    const std::pair<const char*, const char*> templates[] = {
        {"*QVNote", "(<*QVNote>) print flush\n"},
        {"*QVNote", "<*QVNote> print flush\n"},
        {"*QVNote", "%%ZANNote: <*QVNote>\n(comment) print flush\n"},
        {"*QVDSFileName", "(<*QVDSFileName>) print flush\n"},
        {"*QVDSFileName",
         "% by (<*QVDSFileName>\n<a> pop << /K (\\)<*QVDSFileName>) >> /K get 1 1 index length 1 sub "
         "getinterval print flush\n"},
        {"*QVDSFileName", "/S <*QVDSFileName> def <<*QVDSFileName>> pop S print flush\n"}};
    std::string program; // of all texts in all places, one behind the other
    std::string expected;
    for (const auto& [keyword, place] : templates) {
        const PPDXControl control(CNTL_TYPE::jobNote, definitionOf(keyword, place));
        const bool isComment = std::string_view(place).starts_with("%%");
        const bool isFile = std::string_view(keyword) == "*QVDSFileName";
        for (const std::string& text : texts) {
            std::string code;
            control.Inject(keyword, control.PSData(), control.PSLength(), text.c_str(), code);
            program += code;
            // Every line end in a string reads as a line feed.
            const std::string read = isFile ? std::regex_replace(text, std::regex("\r\n?"), "\n") : text;
            expected += isComment ? "comment" : read;
        }
    }
    const CommandResult result = runCommand({"gs", "-q", "-dNODISPLAY", "-dBATCH", "-"}, program);
    EXPECT_EQ(result.output + result.errors, expected) << program;
}

TEST(BooleanControl, ValuesPostScriptAndReports) {
    UIConstraints store;
    PPDXBooleanControl control(definitionOf("*QVB", {}, &store), true,
                               {"On", reinterpret_cast<const unsigned char*>("1 set\n"), 6},
                               {nullptr, nullptr, 9});
    EXPECT_EQ(selectedIn(store, "*QVB"), "True");
    EXPECT_STREQ(control.TrueDisplayText(), "On");
    EXPECT_EQ(control.FalseDisplayText(), nullptr);
    EXPECT_EQ(postScriptOf(control), "%%BeginFeature: *QVB True\n1 set\n%%EndFeature\n");
    const std::pair<const char*, bool> texts[] = {{"true", true},  {"Truex", true}, {"TRUE", true},
                                                  {"", false},     {"Tru", false},  {"False", false},
                                                  {" True", false}};
    for (const auto& [text, expected] : texts) {
        control.SetCurrentControlWithCFString(cfString(text));
        EXPECT_EQ(control.IsTrue(), expected) << text;
        EXPECT_EQ(selectedIn(store, "*QVB"), expected ? "True" : "False");
        EXPECT_EQ(valueOf(control), expected ? "True" : "False");
    }
    EXPECT_EQ(postScriptOf(control), "%%BeginFeature: *QVB False\n\n%%EndFeature\n");
    control.SetCurrentControlWithCFString(nullptr);
    control.ResetToDefaultValue();
    EXPECT_TRUE(control.IsTrue());
    control.SetDefaultValue(false);
    control.SetPresetValueString(cfString("True"));
    EXPECT_EQ(utf8Text(control.CopyPresetValueString()), "True");
    control.ResetToDefaultValue();
    EXPECT_FALSE(control.IsTrue());
    EXPECT_FALSE(control.IsInstallableOption());
}

TEST(RangeControl, SnapsTowardZeroThenClamps) {
    const std::tuple<RangeBounds, long, long> cases[] = {
        {{1, 999, 1, 1}, 0, 1},
        {{1, 999, 5, 1}, 17, 15},
        {{1, 999, 5, 1}, 3, 1},
        {{-100, 100, 7, 0}, -6, 0},
        {{-100, 100, 7, 0}, -99, -98},
        {{0, 98, 10, 0}, 1000, 98},
        {{10, 5, 1, 10}, 7, 5},
        {{0, 100, 0, 0}, 33, 33},
        {{0, 100, -3, 0}, 8, 6},
        {{LONG_MIN, LONG_MAX, -1, 0}, LONG_MIN, LONG_MIN},
        {{LONG_MIN, LONG_MAX, LONG_MIN, 0}, -5, 0},
    };
    for (const auto& [bounds, set, expected] : cases) {
        PPDXRangeControl control(definitionOf("*R"), bounds);
        control.SetValue(set);
        EXPECT_EQ(control.GetValue(), expected) << set << " by " << bounds.increment;
    }
    PPDXRangeControl control(definitionOf("*R", "<*R> set\n"), {1, 999, 5, 17});
    EXPECT_EQ(control.GetValue(), 15);
    EXPECT_EQ(postScriptOf(control), "%%BeginFeature: *R 15\n15 set\n%%EndFeature\n");
    control.SetCurrentControlWithCFString(cfString(" 40 sheets"));
    EXPECT_EQ(valueOf(control), "40");
    EXPECT_EQ(postScriptOf(control), "%%BeginFeature: *R 40\n40 set\n%%EndFeature\n"); // not the cached one
    control.ResetToDefaultValue();
    EXPECT_EQ(control.GetValue(), 15);
    PPDXRangeControl bare(definitionOf("*R"), {});
    EXPECT_EQ(postScriptOf(bare), "%%BeginFeature: *R 0\n\n%%EndFeature\n");
}

TEST(FloatRangeControl, PrintsFourDecimalsShowsThreeAndKeepsOffGridValues) {
    PPDXFloatRangeControl control(definitionOf("*F", "<*F> set\n"), {1, 10, 0.5F, 2.5F});
    EXPECT_EQ(postScriptOf(control), "%%BeginFeature: *F    2.5000\n   2.5000 set\n%%EndFeature\n");
    EXPECT_EQ(valueOf(control), "2.500");
    const std::pair<const char*, float> texts[] = {{"3.3", 3.3F}, {"0", 1},      {"11", 10},
                                                   {"1e300", 10}, {"-1e300", 1}, {"nothing", 1}};
    for (const auto& [text, expected] : texts) {
        control.SetCurrentControlWithCFString(cfString(text));
        EXPECT_FLOAT_EQ(control.GetValue(), expected) << text;
    }
    control.SetValue(std::nanf(""));
    EXPECT_EQ(control.GetValue(), 1);
    control.ResetToDefaultValue();
    EXPECT_EQ(control.GetValue(), 2.5F);
    PPDXFloatRangeControl extreme(definitionOf("*F"), {-FLT_MAX, FLT_MAX, FLT_MIN, FLT_MAX});
    EXPECT_EQ(extreme.GetValue(), FLT_MAX); // the quotient would be infinite
    EXPECT_EQ(valueOf(extreme), "340282346638528859811704183484516925440.000");
}

TEST(CustomPageSizeControl, ReadsAndTellsBothSides) {
    PPDXCustomPageSizeControl control(definitionOf("*CustomPrintSize", "raw\n"), {72, 1000, 72, 2000});
    EXPECT_STREQ(control.UserName(), "Custom Page Size");
    control.SetCurrentControlWithCFString(cfString("595.4 841.6"));
    EXPECT_EQ(valueOf(control), "595.400024 841.599976"); // the nearest floats
    control.SetCurrentControlWithCFString(cfString("100"));
    EXPECT_EQ(valueOf(control), "100.000000 841.599976");
    control.SetCurrentControlWithCFString(cfString("9 9 9"));
    control.ResetToDefaultValue();
    EXPECT_EQ(valueOf(control), "9.000000 9.000000");
    EXPECT_EQ(postScriptOf(control), "raw\n");
    EXPECT_EQ(control.MaxHeight(), 2000);
}

class PopupTest : public testing::Test {
protected:
    void TearDown() override { gPopupJobNotesDoneInitializing = gPopupJobNotesFoundOne = false; }

    std::unique_ptr<PPDXPopupControl> Make(const char* keyword, bool multiSelect, const char* preset) {
        PopupItems items;
        items.push_back(itemOf("A", "a\n"));
        items.push_back(itemOf("B", "b\n"));
        items.push_back(itemOf("C"));
        items.back().psLength = -1;
        return std::make_unique<PPDXPopupControl>(definitionOf(keyword, {}, &store), multiSelect, false,
                                                  std::move(items), preset);
    }

    std::string Reported(const char* key) const { return selectedIn(store, key); }

    // "A+B": the keywords of the selected items.
    static std::string Selected(PPDXPopupControl& popup) {
        std::string selected;
        for (const _PopupItem* item = popup.FirstItem(); item; item = popup.NextItem()) {
            if (item->selected != 0) {
                selected += (selected.empty() ? "" : "+") + std::string(item->keyword.Buffer());
            }
        }
        return selected;
    }

    UIConstraints store;
};

TEST_F(PopupTest, DefaultIsSelectedAndReported) {
    const auto popup = Make("*P", false, "B");
    EXPECT_EQ(popup->GetValue(), 2);
    EXPECT_EQ(Reported("*P"), "B");
    EXPECT_EQ(postScriptOf(*popup), "%%BeginFeature: *P B\nb\n%%EndFeature\n");
    EXPECT_STREQ(popup->GetDefaultKeyword(), "B");

    const auto stray = Make("*Q", false, "Z");
    EXPECT_EQ(stray->GetValue(), 0);
    EXPECT_EQ(stray->DefaultValue(), 0);
    EXPECT_STREQ(stray->GetDefaultKeyword(), "Z");
    EXPECT_EQ(valueOf(*stray), "");
    EXPECT_EQ(Reported("*Q"), "");
    EXPECT_EQ(postScriptOf(*stray), "");
}

TEST_F(PopupTest, IndexBeyondTheListDeselectsAndKeepsCurrent) {
    const auto popup = Make("*P", false, "A");
    popup->SetValue(3);
    EXPECT_EQ(Reported("*P"), "C");
    for (const int outside : {4, 0, -1}) {
        popup->SetValue(outside);
        EXPECT_EQ(popup->GetValue(), 0);
        EXPECT_EQ(Reported("*P"), "C");
        EXPECT_EQ(postScriptOf(*popup), "%%BeginFeature: *P C\n\n%%EndFeature\n");
    }
}

TEST_F(PopupTest, SelectingByKeyword) {
    struct Case {
        bool multiSelect;
        const char* keyword;
        bool select;
        bool found;
        const char* selected; // starting from A+B, or from A with single selection
        const char* current;
    };
    const Case cases[] = {
        {false, "B", true, true, "B", "B"}, {false, "B", false, true, "", "B"},
        {false, "Z", true, false, "", "A"}, {true, "C", true, true, "A+B+C", "C"},
        {true, "A", false, true, "B", "A"}, {true, "Z", true, false, "A+B", "B"},
    };
    for (const Case& each : cases) {
        const auto popup = Make("*P", each.multiSelect, "A");
        if (each.multiSelect) {
            popup->SetKeywordSelect("B", true);
        }
        EXPECT_EQ(popup->SetKeywordSelect(each.keyword, each.select), each.found);
        EXPECT_EQ(Selected(*popup), each.selected) << each.keyword;
        EXPECT_EQ(Reported("*P"), each.keyword); // even if no item has this keyword
        EXPECT_EQ(postScriptOf(*popup).substr(0, 20), std::string("%%BeginFeature: *P ") + each.current);
    }
    const auto popup = Make("*P", false, "A");
    EXPECT_FALSE(popup->SetKeywordSelect(nullptr, true));
    PPDXPopupControl empty(definitionOf("*E", {}, &store), false, false, {}, nullptr);
    EXPECT_FALSE(empty.SetKeywordSelect("A", true));
    EXPECT_EQ(Reported("*E"), "");
    EXPECT_EQ(Selected(*popup), "A");
}

TEST_F(PopupTest, DuplicateKeywordsEmitTheFirst) {
    PopupItems items;
    items.push_back(itemOf("A", "first\n"));
    items.push_back(itemOf("A", "second\n"));
    PPDXPopupControl popup(definitionOf("*P"), false, true, std::move(items), nullptr);
    popup.SetValue(2);
    EXPECT_EQ(postScriptOf(popup), "%%BeginFeature: *P A\nfirst\n%%EndFeature\n");
    popup.SetKeywordSelect("A", true); // single selection: every match is selected
    EXPECT_EQ(Selected(popup), "A+A");
    EXPECT_TRUE(popup.IsInstallableOption());
    PopupItems same;
    same.push_back(itemOf("A", "first\n"));
    same.push_back(itemOf("A", "second\n"));
    PPDXPopupControl several(definitionOf("*M"), true, false, std::move(same), nullptr);
    several.SetKeywordSelect("A", true);
    EXPECT_EQ(Selected(several), "A") << "several selections: the first match";
}

TEST_F(PopupTest, DefaultIndexOverride) {
    const auto popup = Make("*P", false, "A");
    popup->SetDefaultValue(3);
    for (const auto& [done, found, expected] : {std::tuple<bool, bool, int>{false, false, 3},
                                                {false, true, 3},
                                                {true, true, 3},
                                                {true, false, 1}}) {
        gPopupJobNotesDoneInitializing = done;
        gPopupJobNotesFoundOne = found;
        EXPECT_EQ(popup->DefaultValue(), expected);
        popup->ResetToDefaultValue();
        EXPECT_EQ(popup->GetValue(), expected);
    }
    gPopupJobNotesDoneInitializing = false;
    popup->SetDefaultValue(0);
    EXPECT_EQ(popup->DefaultValue(), 1);
}

TEST_F(PopupTest, OnlyColourPopupsTakeNewChoices) {
    const char* colours[] = {"*QVSimulation", "*QVOutProfile",   "*QVRGBOverride", "*QVCurveAdjust",
                             "*QVControlBar", "*QVSpotPriority", "*QVGrayOverride"};
    for (const char* keyword : colours) {
        const auto popup = Make(keyword, false, "A");
        popup->SetCurrentControlWithCFString(cfString("caf\u00e9 1"));
        EXPECT_EQ(popup->ItemCount(), 4U);
        EXPECT_EQ(valueOf(*popup), "caf\u00e9 1");
        EXPECT_STREQ(popup->GetKeywordLocalName("caf\u00e9 1"), "caf\u00e9 1");
        EXPECT_EQ(Reported(keyword), "caf\u00e9 1");
        popup->SetCurrentControlWithCFString(cfString("B"));
        popup->SetCurrentControlWithCFString(cfString("caf\u00e9 1"));
        EXPECT_EQ(popup->ItemCount(), 4U);
        EXPECT_EQ(popup->GetValue(), 4);
        popup->SetCurrentControlWithCFString(cfString("")); // no keyword, so that the default is selected
        EXPECT_EQ(valueOf(*popup), "A");
    }
    for (const char* keyword : {"*QVSimulations", "*P"}) {
        const auto popup = Make(keyword, false, "B");
        popup->SetCurrentControlWithCFString(cfString("New"));
        popup->SetCurrentControlWithCFString(cfString("c"));
        popup->SetCurrentControlWithCFString(nullptr);
        EXPECT_EQ(popup->ItemCount(), 3U);
        EXPECT_EQ(valueOf(*popup), "B");
    }
}

class CollectionsTest : public testing::Test {
protected:
    void TearDown() override { gDisplayOptions = 0; }
};

TEST_F(CollectionsTest, ALookUpOfWhatIsShownPassesOverOrphans) {
    PPDXControls controls;
    std::vector<PPDXControl*> added;
    for (int i = 0; i < 2; ++i) {
        added.push_back(new PPDXPopupControl(definitionOf("*QVOut"), false, false, itemsOf({"A"}), "A"));
        controls.Add(added.back());
    }
    CNTL_TYPE type = CNTL_TYPE::none;
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), nullptr);
    added[1]->SetParent(added[0]);
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), added[1]);
    EXPECT_EQ(controls.Find("*QVOut", type, true), added[0]);
    EXPECT_EQ(type, CNTL_TYPE::popup);
}

// More controls than a list looks through one by one.
TEST_F(CollectionsTest, EachKindHasItsOwnOrderCursorAndLookUpInOneList) {
    gDisplayOptions = 3;
    PPDXControls controls;
    std::vector<PPDXControl*> popups;
    std::vector<PPDXControl*> specials;
    for (std::size_t i = 0; i < 20; ++i) {
        const std::string keyword = "*K" + std::to_string(i);
        specials.push_back(new PPDXSpecialOption(definitionOf(keyword.c_str()), "1"));
        popups.push_back(
            new PPDXPopupControl(definitionOf(keyword.c_str()), false, false, itemsOf({"A"}), "A"));
        controls.Add(specials.back());
        controls.Add(popups.back());
    }
    EXPECT_EQ(controls.NextPopupControl(), nullptr);
    PPDXControl* special = controls.FirstSpecialOption();
    PPDXControl* popup = controls.FirstPopupControl();
    for (std::size_t i = 0; i < 20; ++i) {
        const std::string keyword = "*K" + std::to_string(i);
        EXPECT_EQ(special, specials.at(i));
        EXPECT_EQ(popup, popups.at(i));
        EXPECT_EQ(controls.FindPopup(keyword.c_str(), true), popups.at(i));
        EXPECT_EQ(controls.FindSpecialOption(keyword.c_str(), true), specials.at(i));
        special = controls.NextSpecialOption();
        popup = controls.NextPopupControl();
    }
    EXPECT_EQ(special, nullptr);
    EXPECT_EQ(controls.NextSpecialOption(), nullptr);
    EXPECT_EQ(controls.SpecialOptionsCount(), 20U);
    EXPECT_EQ(controls.FindPopup("9", false), popups.at(9));
}

TEST_F(CollectionsTest, DamagedSettingsLoseOnlyWhatIsDamaged) {
    Settings settings;
    settings.SetInteger("Controls.count", INT64_MAX);
    settings.SetInteger("Groups.count", INT64_MAX);
    settings.SetInteger("Properties.count", -1);
    settings.SetInteger("Control0.type", 99);
    settings.SetInteger("Control1.type", 5);
    settings.Set("Control1.keyword", "=*P");
    settings.Set("Control1.item1.keyword", "#4");
    settings.Set("Control1.selected", "=7 x");
    settings.SetInteger("Control2.type", 2);
    settings.SetInteger("Control2.increment", 0);
    settings.Set("Control2.maximum", "=x");
    PPDXControls controls(settings, nullptr, nullptr);
    EXPECT_TRUE(PPDXGroups(settings).Empty());
    EXPECT_TRUE(PPDXProperties(settings, nullptr).Empty());
    gDisplayOptions = 3;
    EXPECT_EQ(controls.ControlCount(), 2U);
    EXPECT_EQ(controls.FindPopup("*P", true)->ItemCount(), 0U);
    EXPECT_EQ(valueOf(*controls.FirstRangeControl()), "0");
}

} // namespace
} // namespace torka
