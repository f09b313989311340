// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "PPDX/PPDObjects/Groups/PPDXRollDown.h"
#include "PPDX/PPDObjects/Groups/PPDXScrollPane.h"
#include "PPDX/PPDObjects/Properties/PPDXErrors.h"
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"
#include "PPDX/PPDObjects/Properties/PPDXShortcuts.h"
#include "Settings.h"

#include <gtest/gtest.h>

#include "tests/model/ModelFixtures.h"

#include <map>

namespace torka {
namespace {

using namespace tests;

class CollectionsTest : public testing::Test {
protected:
    void TearDown() override { gDisplayOptions = 0; }
};

std::unique_ptr<PPDXControl> makeControl(CNTL_TYPE type, const ControlDefinition& definition) {
    switch (type) {
    case CNTL_TYPE::jobNote:
        return std::make_unique<PPDXJobNote>(definition, nullptr, 10, 0, 0);
    case CNTL_TYPE::range:
        return std::make_unique<PPDXRangeControl>(definition, RangeBounds{});
    case CNTL_TYPE::floatRange:
        return std::make_unique<PPDXFloatRangeControl>(definition, FloatRangeBounds{});
    case CNTL_TYPE::boolean:
        return std::make_unique<PPDXBooleanControl>(definition, false, BooleanBranch{}, BooleanBranch{});
    case CNTL_TYPE::popup:
        return std::make_unique<PPDXPopupControl>(definition, false, false, itemsOf({"A"}), "A");
    case CNTL_TYPE::specialOption:
        return std::make_unique<PPDXSpecialOption>(definition, "1");
    default:
        return std::make_unique<PPDXControl>(type, definition);
    }
}

TEST_F(CollectionsTest, CountsAndIterationFollowTheDisplayOptions) {
    const CNTL_TYPE types[] = {CNTL_TYPE::jobNote,      CNTL_TYPE::range, CNTL_TYPE::floatRange,
                               CNTL_TYPE::boolean,      CNTL_TYPE::popup, CNTL_TYPE::none,
                               CNTL_TYPE::specialOption};
    PPDXRollDown parent("R", cfString("R"), true);
    PPDXControls controls;
    EXPECT_TRUE(controls.Empty() && controls.NoPopups() && controls.NoSpecialOptions());
    // For each type: 1 shown control, 2 orphans, 3 hidden controls, 4 hidden orphans.
    for (const CNTL_TYPE type : types) {
        for (int i = 0; i < 10; ++i) {
            ControlDefinition definition = definitionOf("*X");
            definition.visible = i < 3;
            auto control = makeControl(type, definition);
            control->SetParent(i == 0 || (i >= 3 && i < 6) ? &parent : nullptr);
            controls.Add(control.release());
        }
    }
    controls.Add(nullptr);
    const std::size_t expected[] = {1, 3, 4, 10};
    for (_DISPLAY_OPTIONS_ options = 0; options < 4; ++options) {
        gDisplayOptions = options;
        const std::size_t each = expected[options];
        EXPECT_EQ(controls.PopupCount(), each);
        EXPECT_EQ(controls.SpecialOptionsCount(), each);
        EXPECT_EQ(controls.CustomPageSizeCount(), 0U);
        EXPECT_EQ(controls.ControlCount(), 5 * each); // special options are not counted
        std::map<CNTL_TYPE, std::size_t> seen;
        CNTL_TYPE type = CNTL_TYPE::none;
        for (const PPDXControl* control = controls.First(type); control; control = controls.Next(type)) {
            EXPECT_EQ(type, control->Type());
            ++seen[type];
        }
        EXPECT_EQ(type, CNTL_TYPE::none);
        for (const CNTL_TYPE kind : types) {
            EXPECT_EQ(seen[kind], each);
        }
        std::size_t notes = 0;
        for (const PPDXJobNote* note = controls.FirstJobNote(); note; note = controls.NextJobNote()) {
            ++notes;
        }
        EXPECT_EQ(notes, each);
        EXPECT_EQ(controls.NextJobNote(), nullptr);
    }
    gDisplayOptions = 4;
    EXPECT_EQ(controls.ControlCount(), 0U);
    EXPECT_FALSE(controls.Empty() || controls.NoJobNotes() || controls.NoRangeControls());
}

TEST_F(CollectionsTest, FindGivesTheFirstInListOrder) {
    PPDXControls controls;
    PPDXControl* added[] = {makeControl(CNTL_TYPE::popup, definitionOf("*QVDuplex")).release(),
                            makeControl(CNTL_TYPE::jobNote, definitionOf("*QVOut")).release(),
                            makeControl(CNTL_TYPE::popup, definitionOf("*QVOut")).release(),
                            makeControl(CNTL_TYPE::popup, definitionOf("*QVOut")).release()};
    for (PPDXControl* control : added) {
        controls.Add(control);
    }
    CNTL_TYPE type = CNTL_TYPE::none;
    EXPECT_EQ(controls.Find("Duplex", type, false), added[0]);
    EXPECT_EQ(type, CNTL_TYPE::popup);
    EXPECT_EQ(controls.Find("Duplex", type, true), nullptr);
    EXPECT_EQ(type, CNTL_TYPE::none);
    EXPECT_EQ(controls.Find(nullptr, type, false), nullptr);
    EXPECT_EQ(controls.Find("*QVOut", type, true), added[1]);
    EXPECT_EQ(controls.FindPopup("*QVOut", true), added[2]);
    EXPECT_EQ(controls.FindPopup("", false), added[0]);
    EXPECT_EQ(controls.FindJobNote("Out", false), added[1]);
    EXPECT_EQ(controls.FindBoolean("*QVOut", true), nullptr);
    // All are orphans. Look-ups find them, except those that honour the display options.
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), nullptr);
    added[3]->SetParent(added[0]);
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), added[3]);
    gDisplayOptions = kDisplayOrphans;
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), added[1]);

    PPDXShortcuts shortcuts;
    EXPECT_TRUE(IsShortcutsListEmpty(&shortcuts) && IsShortcutsListEmpty(nullptr));
    shortcuts.Add(added[2]);
    shortcuts.Add(added[0]);
    EXPECT_EQ(shortcuts.Count(), 2U);
    EXPECT_EQ(shortcuts.First(), added[2]);
    EXPECT_EQ(NextShortcut(&shortcuts), added[0]);
    EXPECT_EQ(NextShortcut(&shortcuts), nullptr);
    EXPECT_EQ(shortcuts.Duplex(), added[0]);
    EXPECT_EQ(shortcuts.PageSize(), nullptr);
    EXPECT_EQ(shortcuts.MediaSource(), nullptr);
    EXPECT_EQ(shortcuts.Huekeeper(), nullptr);
}

// Saves a whole tree to settings, passes them through their dictionary, and rebuilds the tree.
TEST_F(CollectionsTest, SettingsRebuildTheModel) {
    PPDXProperties pages;
    PPDXGroups groups;
    PPDXControls controls;
    auto* page = new PPDXProperty("Page", cfString("Seite"), true, true, false);
    auto* pane = new PPDXScrollPane("Pane", cfString("Pane"), true);
    auto* rollDown = new PPDXRollDown("Roll", cfString("\u65e5"), false);
    pages.Add(page);
    groups.Add(rollDown);
    groups.Add(pane);
    page->SetScrollDown(pane);
    pane->SetParent(page);
    rollDown->SetParent(pane);
    pane->RollDowns().Add(rollDown);

    const std::string_view flags[] = {"Dynamic", "Setup"};
    ControlDefinition definition = definitionOf("*R", std::string_view("<*R>\0\x80\r set\n", 12));
    definition.flags = flags;
    definition.visible = false;
    auto* range = new PPDXRangeControl(definition, {-7, 498, 5, 10});
    range->SetParent(rollDown);
    rollDown->Controls().Add(range);
    range->SetValue(1000); // clamped to 498, which is not on the grid
    auto* floats = new PPDXFloatRangeControl(definitionOf("*F", "<*F>"), {0, 1, 0.1F, 0.3F});
    floats->SetValue(0.7F);
    auto* boolean = new PPDXBooleanControl(definitionOf("*B"), false,
                                           {"On", reinterpret_cast<const unsigned char*>("1\n"), 2}, {});
    boolean->SetValue(true);
    PopupItems items = itemsOf({"A", "B", "C"});
    items.push_back(itemOf("D", "d\n"));
    auto* popup = new PPDXPopupControl(definitionOf("*P"), true, true, std::move(items), "B");
    popup->SetKeywordSelect("D", true);
    const CString defaultText("dflt");
    auto* note = new PPDXJobNote(definitionOf("*N", "(<*N>)"), &defaultText, 40, 3, -3);
    note->SetUTF8Notes(cfString("\u65e5"));
    note->SetNotesOnValue(true);
    auto* secret = new PPDXJobNote(definitionOf("*S"), nullptr, 40, jobNoteEncrypt, 0);
    secret->SetNotes("plain");
    auto* size = new PPDXCustomPageSizeControl(definitionOf("*CustomPrintSize"), {1, 2, 3, 4});
    size->SetCurrentControlWithCFString(cfString("595.4 841.6"));
    auto* option = new PPDXSpecialOption(definitionOf("*QVUTF8_Version"), "7");
    for (PPDXControl* control :
         std::initializer_list<PPDXControl*>{range, floats, boolean, popup, note, secret, size, option}) {
        controls.Add(control);
    }

    Settings saved;
    pages.Save(saved);
    groups.Save(saved);
    controls.Save(saved);
    for (const auto& [key, value] : saved.Values()) {
        EXPECT_EQ(value.find("plain"), std::string::npos) << key;
    }
    Settings loaded(saved.CopyAsDictionary());
    UIConstraints store;
    PPDXGroups newGroups(loaded);
    PPDXProperties newPages(loaded, &newGroups);
    PPDXControls newControls(loaded, &store, &newGroups);

    const PPDXProperty* newPage = newPages.First();
    ASSERT_NE(newPage, nullptr);
    EXPECT_TRUE(IsPropertyPage(newPage) && ShowPropInApp(newPage) && !ShowPropInPrintProp(newPage));
    ASSERT_NE(newPage->GetScrollDown(), nullptr);
    EXPECT_EQ(newPage->GetScrollDown()->GetParent(), newPage);
    gDisplayOptions = 3;
    auto* newRoll = dynamic_cast<PPDXRollDown*>(newPage->GetScrollDown()->RollDowns().First());
    ASSERT_TRUE(IsRollDown(newRoll));
    EXPECT_FALSE(newRoll->IsVisible());
    EXPECT_EQ(newRoll->Controls().FindRangeControl("*R", true), newControls.FindRangeControl("*R", true));

    std::vector<PPDXControl*> old;
    controls.ForEach([&](PPDXControl* control) { old.push_back(control); });
    std::size_t number = 0;
    newControls.ForEach([&](PPDXControl* control) {
        PPDXControl& was = *old.at(number++);
        EXPECT_TRUE(*control == was);
        EXPECT_EQ(control->Type(), was.Type());
        EXPECT_EQ(control->IsVisible(), was.IsVisible());
        EXPECT_EQ(control->IsOrphan(), was.IsOrphan());
        EXPECT_EQ(control->ControlFlagCount(), was.ControlFlagCount());
        EXPECT_STREQ(control->UserName(), was.UserName());
        if (&was != secret) {
            EXPECT_EQ(valueOf(*control), valueOf(was)) << was.Keyword();
            EXPECT_EQ(postScriptOf(*control), postScriptOf(was)) << was.Keyword();
        }
        // Saving again writes the same settings, except for the tree's names.
        Settings first;
        Settings second;
        was.Save(first, 0);
        control->Save(second, 0);
        EXPECT_EQ(first.Values(), second.Values()) << was.Keyword();
        control->ResetToDefaultValue();
        was.ResetToDefaultValue();
        EXPECT_EQ(valueOf(*control), valueOf(was)) << was.Keyword();
    });
    EXPECT_EQ(number, old.size());
    const CStringSoup& strings = *store.GetConstraintStrings();
    EXPECT_GE(store.GetCurrentSelections()->GetItem(strings.Find("*P")), 0);

    // Restores only values into the controls that were just reset.
    newControls.Restore(loaded);
    EXPECT_EQ(valueOf(*newControls.FindRangeControl("*R", true)), "498");
    EXPECT_TRUE(newControls.FindBoolean("*B", true)->IsTrue());
    EXPECT_TRUE(newControls.FindPopup("*P", true)->IsKeywordSelected("B"));
    EXPECT_TRUE(newControls.FindPopup("*P", true)->IsKeywordSelected("D"));
    EXPECT_EQ(valueOf(*newControls.FindJobNote("*N", true)), "\u65e5");
    EXPECT_EQ(valueOf(*newControls.FindSpecialOption("*QVUTF8_Version", true)), "7");
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
