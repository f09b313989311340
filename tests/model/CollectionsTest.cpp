// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Groups/PPDXGroups.h"
#include "PPDX/PPDObjects/Properties/PPDXProperties.h"
#include "Settings.h"

#include <gtest/gtest.h>

#include "tests/model/ModelFixtures.h"

namespace torka {
namespace {

using namespace tests;

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
