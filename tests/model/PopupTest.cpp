// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/ModelState.h"

#include <gtest/gtest.h>

#include "tests/model/ModelFixtures.h"

namespace torka {
namespace {

using namespace tests;

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
}

TEST_F(PopupTest, DefaultIndexOverride) {
    const auto popup = Make("*P", false, "A");
    popup->SetDefaultValue(3);
    struct Case {
        bool done, found;
        int expected;
    };
    for (const Case& each : {Case{false, false, 3}, {false, true, 3}, {true, true, 3}, {true, false, 1}}) {
        gPopupJobNotesDoneInitializing = each.done;
        gPopupJobNotesFoundOne = each.found;
        EXPECT_EQ(popup->DefaultValue(), each.expected);
        popup->ResetToDefaultValue();
        EXPECT_EQ(popup->GetValue(), each.expected);
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

} // namespace
} // namespace torka
