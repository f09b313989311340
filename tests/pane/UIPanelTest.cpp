// SPDX-License-Identifier: Apache-2.0
#include "bidi/commands/SpoolerCommands.h"
#include "tests/pane/UIPanelFixture.h"

#include <gmock/gmock.h>

// Tests the panel model's tree, its page size from the system, its resets and the notes of the colour
// controls.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using UIPanel = PaneTest;

std::string group(const std::string& keyword, const std::string& kind = "Rolldown") {
    return "*%ZANGroupName " + keyword + "/" + keyword + " name: True\n*%ZANParent " + keyword +
           "/Pane: True|" + kind + "\n";
}

std::string moved(std::string control, const std::string& groupName) {
    const std::string place = ": Group\n";
    return control.replace(control.find(place), place.size(), ": " + groupName + "\n");
}

std::vector<std::string> shown(const PPDTree& tree) {
    std::vector<std::string> texts;
    for (const PPDTreeGroup& each : tree.groups) {
        texts.push_back(each.keyword + ":");
        for (const PPDTreeControl& control : each.controls) {
            texts.back() += " " + control.keyword;
        }
    }
    texts.emplace_back("quick access:");
    for (const PPDTreeQuickAccess& each : tree.quickAccess) {
        texts.back() += " " + each.keyword + " " + std::to_string(each.position);
    }
    return texts;
}

TEST_F(UIPanel, TreePassesOverTheFirstGroupAndTheFirstControl) {
    Pane pane(paneHeader + group("Empty") + group("Finish") + popup("First", {"A", "B"}) +
              popup("QVDuplex", {"None", "Tumble"}) + moved(popup("QVStaple", {"Off", "On"}), "Finish") +
              moved(jobNote("Notes1"), "Finish") + moved(popup("QVOutProfile", {"Press"}), "Finish") +
              moved(range("QVScale", "25;400;1;100"), "Finish") +
              "*%QVShortcut *QVStaple\n*%QVShortcut *QVDuplex\n*%QVShortcut *QVOutProfile\n"
              "*%QVShortcut *First\n");
    const UI_Panel panel(pane.data.get());
    // The basic panel does not show ranges or expert colour controls. The positions include the removed empty
    // group.
    EXPECT_THAT(shown(UI_Panel::Tree), ElementsAre("Group: *QVDuplex", "Finish: *QVStaple *Notes1",
                                                   "quick access: *QVStaple 300 *QVDuplex 100 *First 0"));
    ASSERT_NE(GetShortcutFromKeyword("*QVDuplex"), nullptr);
    EXPECT_EQ(GetShortcutFromKeyword("*QVDuplex")->userName, "QVDuplex name");
    EXPECT_EQ(GetShortcutFromKeyword("*Notes1"), nullptr);

    // The person's choice replaces the description's shortcuts.
    PPDTree chosen;
    chosen.quickAccess = {{"", "*Notes1", 0}, {"", "*QVOutProfile", 0}};
    ASSERT_TRUE(pane.data->SetPPDShortcuts(chosen));
    UI_Panel again(pane.data.get());
    const auto isTheChoice =
        ElementsAre("Group: *QVDuplex", "Finish: *QVStaple *Notes1", "quick access: *Notes1 301");
    EXPECT_THAT(shown(UI_Panel::Tree), isTheChoice);
    again.PopulatePPDTreeStructure();
    EXPECT_THAT(shown(UI_Panel::Tree), isTheChoice);
}

TEST_F(UIPanel, TreeHoldsItsLimits) {
    const CapturingLog log;
    std::string text = paneHeader + popup("First", {"A"});
    for (int i = 0; i < 300; ++i) {
        const std::string number = std::to_string(i);
        text += jobNote("Note" + number) + "*%QVShortcut *Note" + number + "\n";
    }
    for (int i = 0; i < 40; ++i) {
        const std::string name = "Group" + std::to_string(i);
        text += group(name) + moved(jobNote("In" + name), name);
    }
    Pane pane(text);
    {
        const UI_Panel panel(pane.data.get());
        ASSERT_EQ(UI_Panel::Tree.groups.size(), maximumTreeGroups);
        EXPECT_EQ(UI_Panel::Tree.groups[0].controls.size(), maximumTreeControls);
        EXPECT_EQ(UI_Panel::Tree.quickAccess.size(), maximumQuickAccess);
    }
    EXPECT_EQ(GetShortcutFromKeyword("*Note1"), nullptr); // the tree ended with its panel
    EXPECT_EQ(UI_Panel::mPPD, nullptr);
}

TEST_F(UIPanel, PaperOfThePageSetup) {
    MemoryPanel services;
    services.texts["DocumentSizeCustom"] = "Eigenes Format";
    // The system's paper, whether it is a custom one, page size, custom size and its name.
    const std::tuple<CFDictionaryRef, bool, const char*, const char*, const char*> cases[] = {
        {nullptr, false, "A3", "", ""},
        {paper("a4"), false, "A4", "", ""}, // no such choice: the default, which differs only in case
        {paper("A3"), false, "A3", "", ""},
        {paper("US Letter"), false, "Letter", "", ""},
        {paper("US Legal"), false, "A4", "", ""}, // no such choice
        {paper("Banner", {-18, -9.5, 1000, 590.5}), true, "A4", "600.000000 1018.000000", "Banner"},
        {paper("Banner"), true, "A4", "0.000000 0.000000", "Banner"},
        {paper(nullptr, {0, 0, 300, 200}), true, "A4", "200.000000 300.000000", "Eigenes Format"},
    };
    for (const auto& [sheet, isCustom, pageSize, customSize, customName] : cases) {
        SCOPED_TRACE(customName);
        Pane pane(paneHeader + popup("PageSize", {"A4", "A3", "Letter"}) +
                  popup("QVPrintSize", {"SameAsPageSize", "A5"}));
        pane.Set("*PageSize", "A3");
        pane.Set("*QVPrintSize", "A5");
        pane.Store(paperTicket, sheet);
        UI_Panel panel(pane.data.get(), &services);
        EXPECT_EQ(pane.data->IsPageSizeSuppressed(), isCustom);
        EXPECT_EQ(panel.GetOSPageSize(), isCustom);
        EXPECT_EQ(valueOf(pane, "*PageSize"), pageSize);
        EXPECT_EQ(panel.CustomSize(), customSize);
        EXPECT_EQ(panel.CustomPaperName(), customName);
        EXPECT_EQ(valueOf(pane, "*QVPrintSize"), isCustom ? "A5" : "SameAsPageSize");
    }
}

TEST_F(UIPanel, ResetKeepsWhatBelongsToTheMachineAndThePage) {
    Pane pane(paneHeader + popup("PageSize", {"A4", "A3"}) + popup("QVDuplex", {"None", "Tumble"}) +
              popup("QVOutProfile", {"Press", "Coated"}) + jobNote("Notes1") + jobNote("PresetName") +
              unit("Unit", {"None", "Staple"}));
    ASSERT_TRUE(pane.data->SetCorvianPrinterAddress(cfString("10.0.0.9"), true));
    UI_Panel panel(pane.data.get());
    const auto change = [&] {
        for (const auto& [keyword, value] : {std::pair{"*PageSize", "A3"},
                                             {"*QVDuplex", "Tumble"},
                                             {"*QVOutProfile", "Coated"},
                                             {"*Notes1", "Rush"},
                                             {"*PresetName", "Glossy"},
                                             {"*Unit", "Staple"}}) {
            pane.Set(keyword, value);
        }
        panel.makeJobNotesForSpecialControls();
        for (SettingList* list : pane.data->SideLists()) {
            list->Append({L"key", L"value"});
        }
        pane.data->AccountPairs()[1] = {L"QVPCName", L"Account"};
        pane.data->Watermarks().Select(3);
    };
    change();
    PPDXJobNote* note = pane.model->GetControls()->FindJobNote("*QVOutProfile", true);
    ASSERT_NE(note, nullptr);
    EXPECT_STREQ(note->GetNotes(), "Coated");
    EXPECT_TRUE(note->IsUTF8());

    panel.ResetControlsToDefault();
    EXPECT_EQ(changesIn(*pane.model), "*PageSize=A3 *Unit=Staple *QVOutProfile=Press ");
    EXPECT_STREQ(note->GetNotes(), "Press");
    for (const SettingList* list : pane.data->SideLists()) {
        EXPECT_EQ(list->Count(), 0u);
    }
    EXPECT_THAT(pairsOf(pane.data->PaperCatalogue()),
                ElementsAre("*QVPCMID=-1", "*QVPCName=-1", "*QVCoverSizePCMID=-1", "*QVCoverSizePCName=-1"));
    EXPECT_EQ(pane.data->Watermarks().SelectedIndex(), WatermarkList::noSelection);

    // A note of the control bar without its control is a fault of the description. The reset reports it once
    // and goes on.
    pane.model->SetupControl(nullptr,
                             std::make_unique<PPDXJobNote>("*QVControlBar", cfString("Bar"), nullptr, nullptr,
                                                           0, nullptr, 64, jobNoteUTF8, 0),
                             false);
    change();
    panel.ResetControlsToDefault();
    panel.ResetControlsToDefault();
    EXPECT_EQ(valueOf(pane, "*QVDuplex"), "None");
    EXPECT_EQ(pane.data->MixedMediaList().Count(), 0u);
    ASSERT_EQ(pane.model->Errors()->Count(), 1u);
    EXPECT_TRUE(pane.model->Errors()->First()->IsFatal());
    EXPECT_STREQ(pane.model->Errors()->First()->Keyword(), "*QVControlBar");
}

TEST_F(UIPanel, ColourNotesAreMadeWithTwoWayCommunicationOnly) {
    EXPECT_FALSE(CheckRemote(true)) << "no panel";
    for (const bool twoWay : {false, true}) {
        Pane pane(paneHeader + popup("QVSimulation", {"Euro", "Newsprint"}) + popup("QVControlBar", {"Off"}) +
                  popup("QVSpotPriority", {"Low"}));
        ASSERT_TRUE(pane.data->SetCorvianPrinterAddress(cfString("10.0.0.9"), twoWay));
        UI_Panel panel(pane.data.get());
        EXPECT_EQ(CheckRemote(true), twoWay);
        EXPECT_FALSE(CheckRemote(false));
        for (const char* keyword : {"*QVSimulation", "*QVSpotPriority"}) {
            pane.Set(keyword, "Added by the controller \xE5\x8D\xB0");
        }
        panel.makeJobNotesForSpecialControls();
        panel.makeJobNotesForSpecialControls();
        PPDXControls& controls = *pane.model->GetControls();
        EXPECT_EQ(controls.FindJobNote("*QVOutProfile", true), nullptr); // no such control
        for (const char* keyword : {"*QVSimulation", "*QVControlBar", "*QVSpotPriority"}) {
            PPDXJobNote* note = controls.FindJobNote(keyword, true);
            ASSERT_EQ(note != nullptr, twoWay) << keyword;
            if (note) {
                EXPECT_EQ(utf8Text(note->CopyNotes()), valueOf(pane, keyword));
                EXPECT_EQ(note->GetNotes(), valueOf(pane, keyword));
            }
        }
    }
}

TEST_F(BarePane, LocalPresetsGoToTheQueueWhenThereAreAny) {
    MemoryPanel services;
    UI_Panel panel(pane.data.get(), &services);
    const std::string path = "/tmp/ZAN/JPData/Driver_SMALL.PPD/Presets/presets.xml";
    system->files[path].content = "\xEF\xBB\xBF<a/>\xEF\xBB\xBF";
    panel.writeLocalJPPresetsToDynamicPPD(); // without a printer
    services.printer = pane.printer;
    panel.writeLocalJPPresetsToDynamicPPD();
    ASSERT_EQ(pane.printer->sent.size(), 1u);
    EXPECT_EQ(utf8Text(pane.printer->sent[0].title), "Command_PRINTERLOCALPRESETS");
    EXPECT_EQ(utf8Text(pane.printer->sent[0].command), "EFBBBF<a/>EFBBBF");
    // Too many for the queue, before or after the marks grew: nothing is sent, and the person is told once.
    for (const std::string& content : {std::string(maximumRecordText + 1, 'x'),
                                       "\xEF\xBB\xBF" + std::string(maximumRecordText - 3, 'x')}) {
        const ScopedAlerts person;
        UI_Panel again(pane.data.get(), &services);
        system->files[path].content = content;
        again.writeLocalJPPresetsToDynamicPPD();
        again.writeLocalJPPresetsToDynamicPPD();
        ASSERT_EQ(person->shown.size(), 1u);
        EXPECT_THAT(person->shown[0].informative, testing::HasSubstr("at most 256 kB"));
    }
    system->files.erase(path);
    panel.writeLocalJPPresetsToDynamicPPD();
    EXPECT_EQ(pane.printer->sent.size(), 1u);

    // With a file name that leads to another folder, nothing is sent.
    Pane hostile("*PPD-Adobe: \"4.3\"\n*PCFileName: \"../../x\"\n");
    UI_Panel other(hostile.data.get(), &services);
    system->files["/tmp/ZAN/JPData/Driver_../../x/Presets/presets.xml"].content = "x";
    other.writeLocalJPPresetsToDynamicPPD();
    EXPECT_EQ(pane.printer->sent.size(), 1u);
}

TEST_F(BarePane, AnAddressThatTheQueueDoesNotKeepIsTold) {
    struct Refusing final : PropertyListStore {
        std::string Load() override { return {}; }
        SaveResult Save(std::string_view) override { return {noErr, false, "no room"}; }
    };
    const ScopedAlerts alerts;
    PDEData data(pane.model.get(), cfString("Press"), QueueAccess{pane.session, {}},
                 [] { return std::make_unique<Refusing>(); });
    data.SetPrintSettings(pane.settings);
    UI_Panel(&data).storePrinterAddress(cfString("10.0.0.9"), false);
    ASSERT_EQ(alerts->shown.size(), 1U);
    EXPECT_THAT(alerts->shown[0].informative, testing::EndsWith("no room"));
}

TEST_F(UIPanel, VersionsToldToTheModule) {
    MemoryPanel services;
    for (const auto& [version, told, isPylon] : {std::tuple{"4.4.1", "4.4.1", false},
                                                 {"4.3.1", "4.3.1", true},
                                                 {"4.3", "", true},
                                                 {"4.0", "", false},
                                                 {"4", "", false},
                                                 {"5.1", "", false},
                                                 {"3.4.2", "", true}}) {
        Pane pane(paneHeader + "*%QVVersion: \"" + version +
                  "\"\n*APDialogExtension: \"/Library/Torka Features/Torka.bundle %n 1\"\n");
        const UI_Panel panel(pane.data.get(), &services);
        EXPECT_EQ(fieldText(panel.Record().osVersion), told) << version;
        EXPECT_EQ(panel.isPylon3(), isPylon) << version;
        EXPECT_EQ(fieldText(panel.Record().plugInName), "Torka.bundle");
        EXPECT_EQ(fieldText(panel.Record().bidiEnabled), "0") << "without an address";
        EXPECT_EQ(fieldText(panel.Record().driverVersion), "7.1.0.234567890");
        EXPECT_EQ(fieldText(panel.Record().ppdCopyPath), pane.data->PPDCopyPath());
    }
}

} // namespace

} // namespace torka::tests
