// SPDX-License-Identifier: Apache-2.0
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "pane/panel/PaneInterface.h"
#include "platform/memory/MemoryEventLoop.h"
#include "tests/pane/UIPanelFixture.h"
#include "tests/support/FakeJobPropertiesModule.h"

#include <gmock/gmock.h>

// Launches of a Job Properties module, with every possible end.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class DrawnPane final : public CustomizePaneView {
public:
    void drawControlsInTree(const PPDTree&) override { ++drawn; }
    void greyoutShortcutControls(bool grey) override { isGrey = grey; }
    int drawn = 0;
    bool isGrey = false;
};

class PanelLaunch : public ::testing::Test {
protected:
    PanelLaunch()
        : pane(paneHeader + popup("QVDuplex", {"None", "Tumble"}) + popup("QVOutProfile", {"Press"}) +
               jobNote("PresetName")) {
        UseTwoWay(true);
        panel = std::make_unique<UI_Panel>(pane.data.get(), &services);
        panel->GetCustomizePane().setView(&view);
    }
    ~PanelLaunch() override {
        panel.reset();
        unloadJobPropertiesLibrary();
        sharedListCopyFromJP.reset();
        gotSharedListFromJP = gotServerPresetFromJP = gIgnoreButtonEvents = false;
    }
    void UseTwoWay(bool on) { pane.data->SetCorvianPrinterAddress(cfString("10.0.0.9"), on); }
    static std::map<std::string, bool> AllButtons(bool on) {
        return {{"defaults", on}, {"properties", on}, {"quick access", on}};
    }
    // Checks that the pane is usable and shows the model's values.
    void ExpectUsable(int timesDrawn) const {
        EXPECT_EQ(services.buttons, AllButtons(true));
        EXPECT_FALSE(view.isGrey);
        EXPECT_FALSE(gIgnoreButtonEvents);
        EXPECT_EQ(view.drawn, timesDrawn);
        EXPECT_EQ(sharedList, nullptr);
    }
    std::vector<std::string> Titles() const {
        std::vector<std::string> titles;
        for (const AlertText& text : alertsShown->shown) {
            titles.push_back(text.title);
        }
        return titles;
    }

    ScopedMemorySystem system;
    CapturingLog log;
    ScopedAlerts alertsShown;
    FakeJobPropertiesModule module;
    MemoryPanel services;
    DrawnPane view;
    Pane pane;
    std::unique_ptr<UI_Panel> panel;
    ScopedDouble<MemoryEventLoop, setMainEventLoop> loop;
};

TEST_F(PanelLaunch, AcceptedSettingsAreApplied) {
    module.edit = [&] {
        EXPECT_EQ(services.buttons, AllButtons(false));
        EXPECT_TRUE(view.isGrey);
        EXPECT_EQ(fieldText(panel->Record().bidiEnabled), "1");
        EXPECT_EQ(fieldText(panel->Record().printerAddress), "10.0.0.9");
        panel->LaunchJobProperties(0); // a click in spite of the disabled button
        module.Set(L"QVDuplex", L"Tumble");
        module.Set(L"PresetName", L"Glossy");
        module.Set(L"QVOutProfile", L"Of the server");
        module.watermarks.push_back(L"0,0,0,0,0,0,0,0,0,0,0,0,48,Helvetica,DRAFT");
        module.Set(L"*QV_WATERMARK", L"0");
    };
    services.printer = pane.printer;
    system->files["/tmp/ZAN/JPData/Driver_SMALL.PPD/Presets/presets.xml"].content = "<a/>";
    panel->LaunchJobProperties(0);
    EXPECT_EQ(pane.printer->sent.size(), 1U);
    ExpectUsable(1);
    EXPECT_EQ(std::ranges::count(module.calls, "begin"), 1);
    EXPECT_EQ(changesIn(*pane.model), "*QVDuplex=Tumble *QVOutProfile=Of the server *PresetName=Glossy "
                                      "*QVOutProfile=Of the server "); // the choice and its note
    ASSERT_NE(pane.data->Watermarks().Selected(), nullptr);
    EXPECT_EQ(pane.data->Watermarks().Selected()->Text(), "DRAFT");
    EXPECT_EQ(panel->getReturnFromJP(), 1);
    EXPECT_EQ(services.timesInFront, 1);
    EXPECT_THAT(Titles(), IsEmpty());

    // The preset holds until a setting changes; the change clears its name.
    panel->GetCustomizePane().resetJPServerpresetKeys();
    EXPECT_EQ(valueOf(pane, "*PresetName"), "");
    EXPECT_TRUE(panel->compareJPServerPresets());

    // The printer has stored the watermarks.
    pane.Open();
    panel = std::make_unique<UI_Panel>(pane.data.get(), &services);
    ASSERT_EQ(pane.data->Watermarks().Count(), 1u);
    EXPECT_EQ(watermarkDefinitions(panel->Record()).size(), 1u);

    // An answer that does not change them keeps what another dialog of this person has added since.
    const auto other = pane.DataOf("Press");
    other->GetWatermarksFromPreferences();
    other->Watermarks().Append(std::make_unique<ZANWatermark>(",,,,,,,,,,,,,,OTHER"));
    other->SaveWatermarksToPreferences();
    module.edit = [&] { module.Set(L"QVDuplex", L"None"); };
    panel->LaunchJobProperties(0);
    EXPECT_EQ(valueOf(pane, "*QVDuplex"), "None");
    const auto reader = pane.DataOf("Press");
    reader->GetWatermarksFromPreferences();
    EXPECT_EQ(reader->Watermarks().Count(), 2U);

    // The last one that this dialog knows, deleted in the module, stays deleted. The keys of the lists take
    // their settled form.
    module.edit = [&] {
        module.watermarks.clear();
        module.settings.emplace_back(L"MM_A1", L"Card");
        module.settings.emplace_back(L"*SlipSheet_Tray", L"Upper");
    };
    panel->LaunchJobProperties(0);
    EXPECT_THAT(pairsOf(pane.data->MixedMedia()), ElementsAre("*MM_A1=Card"));
    EXPECT_THAT(pairsOf(pane.data->SlipSheets()), ElementsAre("SlipSheet_Tray=Upper"));
    pane.Open();
    panel = std::make_unique<UI_Panel>(pane.data.get(), &services);
    EXPECT_THAT(textsOf(pane.data->Watermarks()), ElementsAre("OTHER"));
}

TEST_F(PanelLaunch, OtherEndsChangeNothing) {
    const std::string invalid = "You have entered an invalid IP Address or DNS Name";
    // The window's result, those of opening and fetching, two-way communication, alerts, drawings.
    const std::tuple<const char*, std::int32_t, SDMRESULT, SDMRESULT, bool, std::vector<std::string>, int>
        cases[] = {
            {"cancelled", 1, 0, 0, true, {}, 1},
            {"refused address", 2, 0, 0, true, {invalid}, 0},
            {"refused address, two-way off", 2, 0, 0, false, {}, 1},
            {"garbage for a result", -77, 0, 0, true, {invalid}, 0},
            {"no settings to fetch", 0, 0, 4096, true, {}, 1},
            {"a window that could not open", 0, 5, 0, true, {}, 1},
        };
    for (const auto& [what, windowResult, openResult, getResult, twoWay, alerts, drawn] : cases) {
        SCOPED_TRACE(what);
        UseTwoWay(twoWay);
        module.windowResult = windowResult;
        module.openResult = openResult;
        module.getResult = getResult;
        module.edit = [&] { module.Set(L"QVDuplex", L"Tumble"); };
        alertsShown->shown.clear();
        view.drawn = 0;
        panel->LaunchJobProperties(0);
        ExpectUsable(drawn);
        EXPECT_EQ(valueOf(pane, "*QVDuplex"), "None");
        EXPECT_EQ(Titles(), alerts);
    }
    // A preset of the server that was changed meanwhile comes back when the window is cancelled.
    pane.Set("*PresetName", "Glossy");
    module.windowResult = 1;
    module.edit = [&] { panel->GetCustomizePane().resetJPServerpresetKeys(); };
    panel->LaunchJobProperties(0);
    EXPECT_EQ(valueOf(pane, "*PresetName"), "Glossy");
}

TEST_F(PanelLaunch, SessionThatCannotBeginIsTriedOnceMoreWithoutTwoWay) {
    module.beginResult = 1;
    alertsShown->answer = AlertButton::alternateButton; // cancel
    panel->LaunchJobProperties(0);
    ExpectUsable(1);
    EXPECT_EQ(module.calls.size(), 2u) << "one beginning and one end";
    EXPECT_TRUE(pane.data->isBIDIEnabled());

    alertsShown->answer = AlertButton::defaultButton; // continue, every time
    panel->LaunchJobProperties(0);
    ExpectUsable(2);
    EXPECT_FALSE(pane.data->isBIDIEnabled());
    EXPECT_EQ(fieldText(panel->Record().bidiEnabled), "0");
    EXPECT_EQ(alertsShown->shown.size(), 3u);
    EXPECT_EQ(valueOf(pane, "*QVDuplex"), "None");
}

TEST_F(PanelLaunch, WithoutAModuleNoLaunchStarts) {
    auto& libraries = module.Loader().libraries;
    const auto whole = libraries;
    for (const bool isMissing : {true, false}) {
        libraries = whole;
        libraries[FakeJobPropertiesModule::path].symbols.erase("JP1_1EndSession");
        if (isMissing) {
            libraries.clear();
        }
        alertsShown->shown.clear();
        unloadJobPropertiesLibrary();
        setField(panel->Record().jpResult, "0"); // must not count as accepted
        panel->LaunchJobProperties(0);
        EXPECT_THAT(Titles(), ElementsAre("The full properties are not installed"));
    }
    EXPECT_THAT(module.calls, IsEmpty());
    EXPECT_THAT(services.buttons, IsEmpty()); // the buttons were never disabled
    EXPECT_EQ(panel->getReturnFromJP(), 0);
    EXPECT_FALSE(panel->isModuleInstalled(false));
    EXPECT_EQ(alertsShown->shown.size(), 1u);
}

TEST_F(PanelLaunch, AnAddressActionShowsTheAlertAlone) {
    panel->LaunchJobProperties(kJPInvalidAddress);
    EXPECT_EQ(alertsShown->shown.size(), 1u);
    UseTwoWay(false);
    panel->LaunchJobProperties(kJPInvalidAddress);
    EXPECT_EQ(alertsShown->shown.size(), 1u);
    EXPECT_THAT(module.calls, IsEmpty());
}

TEST_F(PanelLaunch, ThePanelMayEndWhileTheWindowIsOpen) {
    for (const bool isSecondWindow : {false, true}) {
        panel = std::make_unique<UI_Panel>(pane.data.get(), &services);
        module.beginResult = isSecondWindow ? 1 : 0;
        alertsShown->onShow = [&](const AlertText&) { // continue: without two-way communication it opens
            module.beginResult = 0;
            return AlertButton::defaultButton;
        };
        module.edit = [&] {
            panel.reset();
            module.Set(L"QVDuplex", L"Tumble");
        };
        panel->LaunchJobProperties(0);
        EXPECT_EQ(panel, nullptr);
        EXPECT_EQ(valueOf(pane, "*QVDuplex"), "None");
        EXPECT_FALSE(gIgnoreButtonEvents || sharedListCopyFromJP); // the copy may hold secrets
    }
}

TEST_F(PanelLaunch, AModuleInAWindowOfItsOwnIsWatched) {
    setField(panel->Record().jpResult, "-1");
    SetTimerCheckForJPReturn();
    loop->Run(std::chrono::seconds(60));
    EXPECT_TRUE(gIgnoreButtonEvents);
    EXPECT_EQ(panel->getReturnFromJP(), 0);
    setField(panel->Record().jpResult, "1");
    loop->Run(std::chrono::milliseconds(10));
    ExpectUsable(1);
    EXPECT_EQ(panel->getReturnFromJP(), 1);
    EXPECT_EQ(loop->Installed(), 0u);

    // The panel may be gone when the timer fires. Without a loop the buttons must not stay disabled.
    setField(panel->Record().jpResult, "-1");
    SetTimerCheckForJPReturn();
    panel.reset();
    loop->Run(std::chrono::milliseconds(10));
    EXPECT_FALSE(gIgnoreButtonEvents);
}

} // namespace

} // namespace torka::tests
