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

TEST_F(CollectionsTest, FindGivesTheFirstInListOrder) {
    PPDXControls controls;
    std::vector<PPDXControl*> added;
    for (const char* keyword : {"*QVDuplex", "*QVOut", "*QVOut"}) {
        added.push_back(new PPDXPopupControl(definitionOf(keyword), false, false, itemsOf({"A"}), "A"));
        controls.Add(added.back());
    }
    CNTL_TYPE type = CNTL_TYPE::none;
    EXPECT_EQ(controls.Find("Duplex", type, false), added[0]);
    EXPECT_EQ(type, CNTL_TYPE::popup);
    EXPECT_EQ(controls.Find("Duplex", type, true), nullptr);
    EXPECT_EQ(controls.FindPopup("*QVOut", true), added[1]);
    EXPECT_EQ(controls.FindBoolean("*QVOut", true), nullptr);
    // All are orphans. Look-ups find them, except those that honour the display options.
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), nullptr);
    added[2]->SetParent(added[0]);
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), added[2]);
    gDisplayOptions = kDisplayOrphans;
    EXPECT_EQ(controls.FindDisplayed("*QVOut", type, true), added[1]);
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
