// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/MemoryShortage.h"
#include "bidi/module/JobPropertiesSession.h"
#include "bidi/module/JobPropertiesState.h"
#include "connection/BonjourModuleController.h"
#include "tests/pane/PanelFixture.h"
#include "tests/support/FakeJobPropertiesModule.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace torka::tests {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct PanelTest : testing::Test {
    Bench bench;
};

TEST_F(PanelTest, GivesPanelsOfOneTypeForListedPrintersOnly) {
    const auto plugIn = makeRegisteredClass("TorkaFeaturesPDEPlugIn5D2E7A419C3B4F608E17B04A6C2D9F85");
    ASSERT_TRUE(plugIn);
    EXPECT_FALSE(makeRegisteredClass("TorkaFeaturesPDEPlugIn"));
    EXPECT_TRUE(plugIn->initWithBundle(nullptr));
    const CFStringRef type = cfString(printDialogPanelType);
    for (const CFStringRef& other : {cfString(""), CFStringRef()}) {
        EXPECT_EQ(plugIn->PDEPanelsForType(other, bench.dialog)->size(), 0U);
    }
    const auto panels = plugIn->PDEPanelsForType(type, bench.dialog);
    ASSERT_TRUE(panels);
    ASSERT_EQ(panels->size(), 1U);
    EXPECT_EQ(panels->front().get(), sTorkaFeaturesPDE);
    EXPECT_FALSE(plugIn->PDEPanelsForType(type, nullptr));

    const std::vector<std::string> unusable = {
        "<dict><key>PCFILENAME</key><array><string>OTHER.PPD</string></array></dict>",
        "<dict><key>OTHER</key><array><string>SMALL.PPD</string></array></dict>",
        "<dict><key>PCFILENAME</key><string>SMALL.PPD</string></dict>",
        "<array><string>SMALL.PPD</string></array>", "<dict><key>"};
    for (const std::string& list : unusable) {
        bench.WriteList(list);
        EXPECT_FALSE(plugIn->PDEPanelsForType(type, bench.dialog)) << list;
    }
    bench.system->files.clear();
    const CapturingLog log;
    EXPECT_FALSE(plugIn->PDEPanelsForType(type, bench.dialog));
    EXPECT_THAT(log.Lines(), testing::Contains(HasSubstr("PrinterList.plist is missing or broken")));
    // A failed creation leaves the existing panel unchanged.
    EXPECT_EQ(sTorkaFeaturesPDE, panels->front().get());
}

TEST(PlugIn, WantsTheMakersVersion) {
    std::string text = panelDescription();
    text.replace(text.find("*%QVVersion"), 19, "");
    Bench bench(text);
    EXPECT_FALSE(bench.Open());
    EXPECT_EQ(sTorkaFeaturesPDE, nullptr);
    EXPECT_EQ(thePMPrinter, nullptr);
}

TEST(Panel, ForgetsTheLastOneAndLoadsItsInterfaceWhenItIsNeeded) {
    Bench bench(panelDescription("*%ZANGroupName Dark/Dark: False\n*%ZANParent Dark/Pane: False|Rolldown\n"));
    gPopupJobNotesNote[2] = "old";
    gPopupJobNotesSavedSetting = '0';
    gPopupJobNotesDefaultsButton = 1;
    const auto panel = bench.Open();
    ASSERT_TRUE(panel);
    EXPECT_NE(panel->getPPDPtr()->GetGroups()->Find("Dark", true), nullptr);
    EXPECT_EQ(gPopupJobNotesNote[2], "");
    EXPECT_EQ(gPopupJobNotesSavedSetting, '1');
    EXPECT_EQ(gPopupJobNotesDefaultsButton, 0);
    EXPECT_EQ(cachesPDEOpenFilePath, "/Library/Caches/ZAN/Press.pdeopen");
    EXPECT_EQ(bench.Stored("PCFILENAME"), "SMALL.PPD");
    EXPECT_EQ(bench.loads, 0) << "no popup notes";
    EXPECT_NE(panel->panelView(), nullptr);
    EXPECT_EQ(panel->panelView(), panel->panelView());
    EXPECT_EQ(bench.loads, 1);
}

TEST(Panel, NothingIsSentBeforeThePaneWasPainted) {
    for (const bool isRefused : {false, true}) {
        Bench bench;
        const auto panel = bench.OpenShown();
        EXPECT_THAT(bench.SentTitles(), IsEmpty());
        ASSERT_TRUE(bench.widgets.painted);
        bench.dialog->printer->sendResult = isRefused ? kPMGeneralError : noErr;
        bench.widgets.painted();
        EXPECT_EQ(utf8Text(panel->GetPDEDataPtr()->GetCorvianPrinterAddress()), "10.0.0.7");
        if (!isRefused) {
            EXPECT_THAT(bench.SentTitles(), ElementsAre("Command_ZANPrefs", "Command_LocaleCode"));
            EXPECT_EQ(utf8Text(bench.dialog->printer->sent[1].command), gServerLanguage);
        }
        // A refused address list alone is sent again.
        bench.dialog->printer->sendResult = noErr;
        bench.dialog->printer->sent.clear();
        panel->sendDeferredCommands();
        EXPECT_EQ(bench.SentTitles(), std::vector<std::string>(isRefused ? 1 : 0, "Command_ZANPrefs"));
        bench.dialog->printer->sent.clear();
        panel->GetPDEDataPtr()->SetCorvianPrinterAddress(cfString("10.0.0.8"), true);
        EXPECT_THAT(bench.SentTitles(), ElementsAre("Command_ZANPrefs")) << "a later address goes at once";
    }
}

TEST_F(PanelTest, ANewAddressForgetsTheOldControllersData) {
    const auto panel = bench.OpenShown();
    bench.system->files["/var/cache/torka/queues/Press.bididata"] = {"x", 0644};
    const auto answer = panel->Server().FetchServerData(
        bench.dialog->printer, "10.0.0.7", "", [] {}, ServerExchange::Failures::quiet);
    ASSERT_EQ(answer, ServerExchange::Answer::read);
    panel->printerAddressStored(false);
    EXPECT_EQ(panel->Server().GetState(), ServerExchange::State::nothing);
}

TEST(Panel, QueueNamesComeFromTheLastComponent) {
    sessionQueueName = "kept";
    for (const char* path : {"Press.ppd", "/a/Press", "/a.ppd/Press", ""}) {
        EXPECT_FALSE(TorkaFeaturesPDE::getQueuePPDName(path)) << path;
        EXPECT_EQ(sessionQueueName, "kept");
    }
    EXPECT_TRUE(TorkaFeaturesPDE::getQueuePPDName("/a/Pr.ppd.ppdess.ppd"));
    EXPECT_EQ(sessionQueueName, "Press");
    // A suffix that the removal of another suffix creates is not removed.
    EXPECT_TRUE(TorkaFeaturesPDE::getQueuePPDName("/a/P.p.ppdpd"));
    EXPECT_EQ(sessionQueueName, "P.ppd");
    EXPECT_TRUE(TorkaFeaturesPDE::getQueuePPDName("/a/" + std::string(400, 'q') + ".ppd"));
    EXPECT_EQ(sessionQueueName.size(), 255U);
}

TEST(Panel, TheAccountNameFillsAnEmptyUserNameWhereTheControllerChecksIt) {
    const std::string note = jobNote("QVUserAuthName", "20|UTF8");
    const std::string checks = "*%ZANSpecialOption *ZANAuthenticateWithLDAP: ";
    for (const auto& [more, filled] :
         {std::pair{checks + "True\n" + note, "b\xC3\xA4r"}, {checks + "False\n" + note, ""}, {note, ""}}) {
        Bench bench(panelDescription(more));
        bench.system->userName = "b\xC3\xA4r";
        const auto panel = bench.OpenShown();
        EXPECT_EQ(valueOf(*panel, "*QVUserAuthName"), filled) << more;
        set(*panel, "*QVUserAuthName", "another");
        panel->saveValuesAndReturnError(nullptr);
        panel->restoreValuesAndReturnError(nullptr);
        EXPECT_EQ(valueOf(*panel, "*QVUserAuthName"), "another");
        panel->defaultsButtonClicked();
        EXPECT_NE(gPopupJobNotesDefaultsButton, 0);
        EXPECT_EQ(valueOf(*panel, "*QVUserAuthName"), filled) << more;
    }
}

TEST(Panel, NoPointerNamesAPanelThatIsGone) {
    // Panels by letter in the order of creation; then their ends in order: the panel that ends, and the
    // current and the saved panel after it.
    struct Course {
        std::string made;
        std::vector<std::string> ends;
    };
    const std::vector<Course> courses = {
        {"a", {"a--"}},
        {"ab", {"ab-", "b--"}},
        {"ab", {"ba-", "a--"}},
        {"abc", {"acb", "bc-", "c--"}}, // the end of the first of three panels changes nothing
        {"abc", {"bc-", "ca-", "a--"}},
        {"abc", {"cb-", "ba-", "a--"}},
    };
    for (const Course& course : courses) {
        Bench bench;
        std::map<char, std::shared_ptr<TorkaFeaturesPDE>> panels;
        const auto letterOf = [&](const TorkaFeaturesPDE* panel) {
            const auto known =
                std::ranges::find(panels, panel, [](const auto& each) { return each.second.get(); });
            return known != panels.end() ? known->first : panel == nullptr ? '-' : '?';
        };
        for (const char letter : course.made) {
            bench.Choose(std::string(1, letter), bench.queuePath);
            panels[letter] = bench.Open();
            static_cast<void>(panels[letter]->panelView());
        }
        EXPECT_EQ(invalidDeallocCall, course.made.size() > 2);
        for (const std::string& end : course.ends) {
            panels.erase(end[0]);
            EXPECT_EQ(letterOf(sTorkaFeaturesPDE), end[1]) << course.made << " " << end;
            EXPECT_EQ(letterOf(sTorkaFeaturesPDEsaved), end[2]) << course.made << " " << end;
            EXPECT_FALSE(invalidDeallocCall);
            EXPECT_EQ(jobPropertiesHost(), sTorkaFeaturesPDE);
            // The current panel's description, tree, record, printer, session and queue are the published
            // ones.
            if (sTorkaFeaturesPDE != nullptr) {
                EXPECT_EQ(UI_Panel::mPPD, sTorkaFeaturesPDE->getPPDPtr());
                EXPECT_FALSE(UI_Panel::Tree.groups.empty());
                EXPECT_EQ(sSharedList, &sTorkaFeaturesPDE->GetUI_PanelPtr()->Record());
                EXPECT_EQ(sUiPanelOnJPReturn, sTorkaFeaturesPDE->GetUI_PanelPtr());
                ASSERT_NE(thePMPrinter, nullptr);
                EXPECT_EQ(utf8Text(PMPrinterGetName(*thePMPrinter)), end.substr(1, 1));
                EXPECT_TRUE(currentPrintSession);
                EXPECT_EQ(sessionQueueName, end.substr(1, 1)) << "no link: the name under CUPS";
            }
        }
    }
}

TEST_F(PanelTest, TheRootViewMayOutliveIt) {
    auto panel = bench.OpenShown();
    bench.widgets.quickAccessOpen = true;
    const ViewRef view = panel->panelView();
    const auto painted = bench.widgets.painted;
    panel.reset();
    EXPECT_EQ(bench.widgets.quickAccessCancels, 1);
    EXPECT_EQ(view.use_count(), 1);
    painted(); // called after the panel's end
    EXPECT_EQ(UI_Panel::mPPD, nullptr);
}

TEST(Panel, WorksWithoutAnInterface) {
    std::string text = panelDescription(jobNote("QVAccount", "20|Alpha|PopupJN"));
    text.replace(text.find("English"), 7, "Japanese");
    Bench bench(text);
    setPaneInterfaceLoader([&](TorkaFeaturesPDE&, const BundleRef&) -> std::unique_ptr<PaneInterface> {
        ++bench.loads;
        return nullptr;
    });
    const auto panel = bench.Open();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->panelView(), nullptr);
    EXPECT_EQ(bench.loads, 1); // without a second attempt
    EXPECT_TRUE(panel->willShow());
    EXPECT_TRUE(panel->shouldHide());
    panel->customizeQuickAccessButtonClicked();
    panel->enableCustomizedViewForDMT();
    EXPECT_TRUE(panel->shouldPrint());
    panel->printWindowWillClose();
    EXPECT_TRUE(gPopupJobNotesLangIsJapanese);
    resetPopupJobNotes();
}

TEST(Panel, LongPrinterNamesEndAtABlank) {
    const std::string word(40, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"Torka Production 90", "Torka Production 90"},
        {word.substr(0, 38), word.substr(0, 38)},
        {word, word.substr(0, 38)},
        {"Torka " + word, "Torka"},
        {word.substr(0, 30) + " Press 9000", word.substr(0, 30) + " Press"}};
    for (const auto& [name, shown] : cases) {
        Bench bench;
        bench.dialog->printer->makeAndModel = name;
        const auto panel = bench.OpenShown();
        bench.dialog->printer->makeAndModel = "Other"; // a known name is not asked for again
        panel->willShow();
        EXPECT_EQ(bench.widgets.texts[PaneOutlet::printerName], shown);
    }
}

TEST(Panel, CustomPapersAreToldFromTheSystemsTicket) {
    // Custom is -1 when the system does not say; the expected name is "" for a paper that is not custom.
    for (const auto& [name, custom, minorVersion, expected] : {std::tuple{"tabloid", 1, 15, "Tabloid"},
                                                               {"SRA3", 1, 9, "SRA3"},
                                                               {"Mine", 1, 15, "Custom"},
                                                               {"Mine", 1, 8, "Mine"},
                                                               {"Mine", 0, 15, ""},
                                                               {"Mine", -1, 15, ""},
                                                               {"a4", -1, 8, "a4"},
                                                               {"", 1, 15, ""}}) {
        Bench bench;
        bench.system->minorVersion = minorVersion;
        bench.dialog->printer->papers = {{"A4", "A4", 595, 842}};
        bench.Store("com.apple.print.subTicket.paper_info_ticket",
                    CFDictionaryCreate({{cfString("com.apple.print.PaperInfo.PMPaperName"),
                                         *name != '\0' ? cfString(name) : nullptr},
                                        {cfString("com.apple.print.PaperInfo.PMCustomPaper"),
                                         custom < 0 ? nullptr : CFBooleanCreate(custom != 0)}}));
        const auto panel = bench.Open();
        EXPECT_EQ(panel->isCustomPageSize(), *expected != '\0') << name;
        EXPECT_EQ(utf8Text(panel->customPapername()), expected);
    }
}

TEST_F(PanelTest, DiscoveredQueuesGetTheirServiceAsAddressOnce) {
    EXPECT_EQ(utf8Text(bench.OpenShown()->queueServiceName()), "");
    bench.dialog->printer->deviceUri = "dnssd://Office%20Press._ipp._tcp.local./?uuid=1";
    const auto panel = bench.OpenShown();
    EXPECT_TRUE(panel->isBonjourPrinter());
    EXPECT_EQ(utf8Text(panel->queueServiceName()), "Office Press");
    EXPECT_EQ(utf8Text(panel->GetPDEDataPtr()->GetCorvianPrinterAddress()), "Office Press");
    EXPECT_EQ(utf8Text(panel->currentIPAddress()), "Office Press");
    panel->GetPDEDataPtr()->SetCorvianPrinterAddress(cfString("10.0.0.9"), true);
    panel->willShow();
    EXPECT_EQ(utf8Text(panel->currentIPAddress()), "10.0.0.9");
}

TEST_F(PanelTest, TheSystemsTrayIsSelected) {
    bench.Store("AP_FIRSTPAGE_InputSlot", cfString("Tray1"));
    const auto panel = bench.Open();
    EXPECT_EQ(valueOf(*panel, "*InputSlot"), "Tray1");
    bench.Store("AP_FIRSTPAGE_InputSlot", cfString("Auto"));
    panel->updatePageSizeAndInputSlot();
    EXPECT_EQ(valueOf(*panel, "*InputSlot"), "Auto");
}

TEST_F(PanelTest, HidingEndsItsDialogs) {
    const auto panel = bench.OpenShown();
    EXPECT_TRUE(panel->shouldHide());
    EXPECT_EQ(bench.widgets.quickAccessCancels, 0);
    panel->customizeQuickAccessButtonClicked();
    bench.widgets.sheet->delegate->configureButtonClicked();
    ASSERT_TRUE(bench.widgets.sheet->isOpen);
    EXPECT_TRUE(panel->shouldHide());
    EXPECT_EQ(bench.widgets.quickAccessCancels, 1);
    EXPECT_FALSE(bench.widgets.sheet->isOpen);
}

TEST(Panel, AnAdministratorCanSwitchQuickAccessOff) {
    Bench bench(panelDescription(templateLines("<Category name=\"UI-Modification\"><Show>\n"
                                               "<Key name=\"QVQuickAccess\" value=\"False\"/>\n"
                                               "</Show></Category>\n")));
    const auto panel = bench.OpenShown();
    EXPECT_TRUE(panel->isQuickAccessOff());
    for (const PaneOutlet outlet : {PaneOutlet::quickaccessStaticText, PaneOutlet::horizontalLine,
                                    PaneOutlet::horizontalLine2, PaneOutlet::customizeQuickAccessButton}) {
        EXPECT_TRUE(bench.widgets.hidden[outlet]);
    }
    EXPECT_EQ(bench.widgets.shifts[PaneOutlet::customizePane], 35);
    EXPECT_EQ(bench.widgets.shifts[PaneOutlet::defaultsButton], 30);
    EXPECT_EQ(bench.widgets.shifts[PaneOutlet::printerName], 35);
    EXPECT_EQ(bench.widgets.shifts[PaneOutlet::outputBinsView], -35);
}

TEST_F(PanelTest, PrintingSendsTheTicketAndKeepsTheSettings) {
    auto panel = bench.OpenShown();
    bench.widgets.painted();
    bench.dialog->printer->sent.clear();
    set(*panel, "*QVFold", "Half");
    set(*panel, "*QVSecret", "geheim");
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_THAT(bench.SentTitles(), ElementsAre("Command_PSTempFileName", "Command_WritePSTemp"));
    const std::string path = bench.Stored(std::string(ticketPathSetting).c_str());
    EXPECT_THAT(path, HasSubstr("/Library/Caches/ZAN/Torka.temp"));
    EXPECT_EQ(utf8Text(bench.dialog->printer->sent[0].command), path);
    EXPECT_THAT(utf8Text(bench.dialog->printer->sent[1].command), HasSubstr("<plist"));
    EXPECT_EQ(bench.Stored("*QVFold"), "Half");
    // After a print, the dialog's end writes no further ticket.
    panel->printWindowWillClose();
    EXPECT_EQ(bench.Stored(std::string(ticketPathSetting).c_str()), path);
    panel.reset();

    // A new dialog begins with the last settings, except for secrets.
    bench.dialog->settings = std::make_shared<MemoryPrintSettings>();
    panel = bench.Open();
    EXPECT_EQ(changesIn(*panel->getPPDPtr()), "*QVFold=Half ");
    // A cancelled dialog stores its settings in the print settings and sends nothing.
    bench.dialog->printer->sent.clear();
    set(*panel, "*QVDuplex", "Tumble");
    panel->printWindowWillClose();
    EXPECT_EQ(bench.Stored("*QVDuplex"), "Tumble");
    EXPECT_NE(bench.Stored(std::string(ticketPathSetting).c_str()), "");
    EXPECT_THAT(bench.SentTitles(), testing::Not(testing::Contains("Command_WritePSTemp")));
}

TEST_F(PanelTest, BelowVersionSevenTheTicketIsAFile) {
    bench.system->minorVersion = 6;
    const auto panel = bench.OpenShown();
    EXPECT_TRUE(panel->shouldPrint());
    const std::string path = bench.Stored(std::string(ticketPathSetting).c_str());
    EXPECT_TRUE(bench.system->files.contains(path)) << path;
    EXPECT_THAT(bench.SentTitles(), testing::Not(testing::Contains("Command_WritePSTemp")));
}

TEST(Panel, APersonHearsWhichSettingsTheJobLacks) {
    std::string code;
    for (int line = 0; line < 40; ++line) {
        code += "% " + std::string(40, 'x') + "\n";
    }
    std::string description = popup("QVLong", {"Off", "On"});
    description.replace(description.find("% On"), 4, code);
    std::string marks = popup("QVMarks", {"None", "Crop", "Fold"});
    marks.replace(marks.find("PickOne"), 7, "PickMany");
    std::string empty = popup("QVEmpty", {"None"});
    empty.replace(empty.find("PickOne"), 7, "PickMany");
    empty.erase(empty.find("*QVEmpty None"), empty.find("*CloseUI") - empty.find("*QVEmpty None"));
    Bench bench(panelDescription(description + range("QVScale", "-9;400;1;100") + marks + empty));
    const auto panel = bench.OpenShown();
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_THAT(bench.alerts->shown, IsEmpty());
    set(*panel, "*QVLong", "On");
    set(*panel, "*QVScale", "-5");
    EXPECT_TRUE(panel->shouldPrint());
    ASSERT_EQ(bench.alerts->shown.size(), 1U);
    EXPECT_THAT(bench.alerts->shown[0].informative,
                testing::EndsWith(": QVLong name\nA job takes no value below 0: QVScale"));
    const auto choices = [&bench] {
        return systemChoices(bench.dialog->settings->Value(cfString(systemChoicesSetting)));
    };
    EXPECT_EQ(choices().size(), 1U);
    set(*panel, "*QVLong", "Off");
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_THAT(choices(), IsEmpty());
    set(*panel, "*QVScale", "5");
    auto& list = *panel->getPPDPtr()->GetControls()->FindPopup("*QVMarks", true);
    const auto told = [&] {
        bench.alerts->shown.clear();
        EXPECT_TRUE(panel->shouldPrint());
        return bench.alerts->shown.empty() ? std::string() : bench.alerts->shown[0].informative;
    };
    list.SetValue(2);
    EXPECT_EQ(told(), "") << "one choice";
    list.SetKeywordSelect("Fold", true);
    EXPECT_EQ(
        told(),
        "Of these lists a job has one choice, the one selected or deselected last: QVMarks name (Fold)");
    EXPECT_EQ(list.EmittedKeyword(), "Fold");
    list.SetKeywordSelect("Fold", false);
    EXPECT_EQ(
        told(),
        "Of these lists a job has one choice, the one selected or deselected last: QVMarks name (Fold)");
}

TEST_F(PanelTest, NoJobLosesItsSettingsInSilence) {
    const auto panel = bench.OpenShown();
    bench.dialog->onSettings = [] { ++gMemoryShortages; };
    EXPECT_FALSE(panel->shouldPrint());
    ASSERT_EQ(bench.alerts->shown.size(), 1U);
    EXPECT_EQ(bench.alerts->shown[0].title, "The job is not printed");
    EXPECT_THAT(bench.SentTitles(), testing::Not(testing::Contains("Command_WritePSTemp")));
    bench.dialog->onSettings = nullptr;
    bench.dialog->printer->sendResult = kPMGeneralError; // the filter stops the job
    EXPECT_TRUE(panel->shouldPrint());
    ASSERT_EQ(bench.alerts->shown.size(), 2U);
    EXPECT_EQ(bench.alerts->shown[1].informative, "The print queue did not take them.");
    bench.dialog->printer->sendResult = noErr;
    bench.dialog->settings->setResult = kPMGeneralError; // the job does not name its ticket
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_EQ(bench.alerts->shown.size(), 3U);
    bench.dialog->settings->setResult = noErr;
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_EQ(bench.alerts->shown.size(), 3U);
    EXPECT_THAT(bench.SentTitles(), testing::Contains("Command_WritePSTemp"));
}

TEST(Panel, PopupNotesAreAskedForAndRemembered) {
    Bench bench(panelDescription(jobNote("QVAccount", "20|Alpha|Remembered|PopupJN") +
                                 jobNote("QVPin", "20|Alpha|Remembered|Password|PopupJN") +
                                 jobNote("QVDoorPassword", "20|Alpha|Remembered|PopupJN")));
    const auto panel = bench.OpenShown();
    bench.widgets.painted();
    bench.dialog->printer->sent.clear();
    EXPECT_EQ(bench.widgets.observed.size(), 30U);
    EXPECT_THAT(bench.widgets.observed, testing::IsSupersetOf({"popupJobNoteVal11", "popupJobNoteSec55"}));
    bench.widgets.popupAnswer = false;
    EXPECT_FALSE(panel->shouldPrint());
    EXPECT_EQ(bench.widgets.popups, 1);
    EXPECT_THAT(bench.SentTitles(), IsEmpty());
    EXPECT_EQ(bench.Stored(std::string(ticketPathSetting).c_str()), "");

    bench.widgets.popupAnswer = true;
    gPopupJobNotesSavedEnable = '1';
    gPopupJobNotesSavedShowLast = '1';
    set(*panel, "*QVAccount", "50% b\xC3\xBCro");
    set(*panel, "*QVPin", "1234");
    set(*panel, "*QVDoorPassword", "open");
    EXPECT_TRUE(panel->shouldPrint());
    ASSERT_THAT(bench.SentTitles(),
                ElementsAre("Command_PSTempFileName", "Command_WritePSTemp", "command_PopupJnData"));
    const std::string kept = utf8Text(bench.dialog->printer->sent[2].command);
    EXPECT_EQ(kept, "111\n*QVAccount=50%25 b\xC3\xBCro");
    // The same preferences are not sent again.
    EXPECT_TRUE(panel->shouldPrint());
    EXPECT_EQ(bench.dialog->printer->sent.size(), 5U);
}

TEST(Panel, ATypedAddressIsStored) {
    Bench bench(panelDescription(popup("QVOutProfile", {"Press", "Coated"})));
    const auto panel = bench.OpenShown();
    bench.widgets.texts[PaneOutlet::printerAddress] = "press.local";
    EXPECT_TRUE(panel->saveValuesAndReturnError(nullptr));
    EXPECT_EQ(utf8Text(panel->GetPDEDataPtr()->GetCorvianPrinterAddress()), "press.local");
    EXPECT_FALSE(panel->GetPDEDataPtr()->isBIDIEnabled());
    bench.widgets.sheet->bidi = true;
    bench.widgets.sheet->field = "press.local";
    bench.widgets.sheet->delegate->BIDICheckBoxClicked();
    panel->printWindowWillClose();
    EXPECT_TRUE(panel->GetPDEDataPtr()->isBIDIEnabled());
    set(*panel, "*QVOutProfile", "Coated");
    panel->saveValuesAndReturnError(nullptr);
    const PPDXJobNote* note = panel->getPPDPtr()->GetControls()->FindJobNote("*QVOutProfile", true);
    ASSERT_NE(note, nullptr);
    EXPECT_STREQ(note->GetNotes(), "Coated");
}

// The person continues without two-way communication when the queue refuses the request or the module cannot
// begin. Only the second forgets the address.
TEST(Panel, TheWaitForTheServerKeepsTheAddress) {
    for (const auto& [sent, begun, address] :
         {std::tuple{kPMGeneralError, 0, "10.0.0.9"}, {noErr, 1, "10.0.0.7"}, {noErr, 0, "10.0.0.9"}}) {
        Bench bench(panelDescription(jobNote("PresetName")));
        FakeJobPropertiesModule module;
        const auto panel = bench.OpenShown();
        PDEData& data = *panel->GetPDEDataPtr();
        auto& libraries = module.Loader().libraries;
        libraries["/libzanjp2.so"] = libraries[module.path]; // beside the bundle
        bench.widgets.sheet->bidi = true;
        bench.widgets.sheet->field = "10.0.0.9";
        data.SetCorvianPrinterAddress(cfString("10.0.0.9"), true);
        bench.alerts->answer = AlertButton::defaultButton;
        bench.dialog->printer->sendResult = sent;
        bench.system->files["/var/cache/torka/queues/Press.bididata"] = {"x", 0644};
        module.beginResult = begun;
        module.edit = [&module, &bench, hasData = sent == noErr] {
            const auto read = jobPropertiesHost()->getBidiDataCopy();
            EXPECT_EQ(read ? *read : "", hasData ? "x\n" : "");
            EXPECT_FALSE(bench.widgets.sheet->bidiEnabled || bench.widgets.sheet->configureEnabled);
            module.settings.emplace_back(L"QVFold", L"Half");
        };
        panel->launchFullProperties();
        EXPECT_EQ(data.isBIDIEnabled(), sent == noErr && begun == 0);
        EXPECT_EQ(bench.widgets.sheet->bidi, data.isBIDIEnabled());
        EXPECT_EQ(bench.widgets.sheet->configureEnabled, data.isBIDIEnabled());
        EXPECT_TRUE(bench.widgets.sheet->bidiEnabled);
        for (const auto& [outlet, isEnabled] : bench.widgets.enabled) {
            EXPECT_TRUE(isEnabled);
        }
        EXPECT_EQ(utf8Text(data.GetCorvianPrinterAddress()), address) << "the queue's own or the stored one";
        EXPECT_EQ(valueOf(*panel, "*QVFold"), begun == 0 ? "Half" : "Flat");
        if (data.isBIDIEnabled()) {
            EXPECT_THAT(utf8Text(bench.dialog->printer->sent.back().command),
                        testing::AllOf(HasSubstr("keys=*QVDuplex"), HasSubstr("locale=" + gServerLanguage)));
            set(*panel, "*PresetName", "Glossy");
            panel->GetUI_PanelPtr()->GetsBonjourModuleController()->setprinterIPField(cfString("10.0.0.10"));
            panel->launchFullProperties();
            EXPECT_EQ(valueOf(*panel, "*PresetName"), "");
        }
        unloadJobPropertiesLibrary();
    }
}

TEST(Panel, ADialogThatWasNeverShownKeepsTheStoredAddress) {
    Bench bench(panelDescription(jobNote("QVAccount", "20|Alpha|PopupJN"))); // loads the interface now
    const auto panel = bench.Open();
    panel->GetPDEDataPtr()->SetCorvianPrinterAddress(cfString("10.9.9.9"), false);
    const auto second = bench.Open();
    EXPECT_EQ(utf8Text(second->currentIPAddress()), "10.0.0.7");
    second->printWindowWillClose();
    EXPECT_EQ(utf8Text(second->GetPDEDataPtr()->GetCorvianPrinterAddress()), "10.0.0.7");
}

TEST(Panel, AutomationLeavesWhatTheAdministratorFixed) {
    Bench bench(
        panelDescription(templateLines("<Category name=\"UI-Modification\"><Lock>"
                                       "<ZANPPD key=\"QVDuplex\" value=\"True\"/></Lock></Category>")));
    bench.system->files["/home/user/.config/torka/automation.plist"] = {
        R"(<?xml version="1.0"?><plist version="1.0"><dict><key>QVDuplex</key><string>Tumble</string>)"
        "<key>QVFold</key><string>Half</string></dict></plist>",
        0600};
    const auto panel = bench.Open();
    EXPECT_EQ(changesIn(*panel->getPPDPtr()), "*QVFold=Half ");
}

TEST_F(PanelTest, AutomationIsAppliedOnceBeforeTheFirstDisplay) {
    const std::string start = R"(<?xml version="1.0"?><plist version="1.0"><dict>)";
    bench.system->files["/home/user/.config/torka/automation.plist"] = {
        start + "<key>QVFold</key><string>Half</string><key>*QVDuplex</key><string>Tumble</string>"
                "<key>*QVSecret</key><string>geheim</string><key>QVNotes1</key><integer>7</integer>"
                "<key>None</key><true/><key>InputSlot</key><string>tray1</string></dict></plist>",
        0600};
    const CapturingLog log;
    const auto panel = bench.Open();
    EXPECT_EQ(changesIn(*panel->getPPDPtr()), "*QVDuplex=Tumble *QVFold=Half *QVNotes1=7 ");
    EXPECT_EQ(bench.Stored("*QVFold"), "Half"); // the dialog begins with this value
    EXPECT_THAT(log.Lines(), testing::Contains(HasSubstr("None: the description has no such setting")));
    set(*panel, "*QVFold", "Flat");
    panel->willShow();
    EXPECT_EQ(valueOf(*panel, "*QVFold"), "Flat");

    bench.system->files["/home/user/.config/torka/automation.plist"].content = "<plist>";
    EXPECT_TRUE(bench.Open());
    EXPECT_THAT(log.Lines(), testing::Contains(HasSubstr("automation.plist cannot be used")));
    EXPECT_THAT(log.Lines(), testing::Contains(HasSubstr("InputSlot: it does not take this value")));
}

} // namespace

} // namespace torka::tests
