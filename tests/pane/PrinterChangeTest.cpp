// SPDX-License-Identifier: Apache-2.0
#include "tests/connection/RecordPPD.h"
#include "tests/pane/PanelFixture.h"

#include <gmock/gmock.h>
#include <sstream>

// What a change of printer brings along: nothing that means something to one queue only.

namespace torka::tests {

namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

// The lines of a description that hold a record.
std::string recordLines(const std::string& record, const std::string& text) {
    const TemporaryFolder folder;
    std::istringstream file(readFile(writeRecordPPD(folder, record, text, true)));
    std::string lines;
    for (std::string line; std::getline(file, line);) {
        lines += line.starts_with("*" + record) ? line + "\n" : "";
    }
    return lines;
}

// An address list with two watermarks of the queue.
std::string listWithWatermarks(const std::string& queue) {
    const ScopedMemorySystem system;
    Pane pane(paneHeader);
    pane.data = pane.DataOf(queue);
    for (const char* text : {"ONE", "TWO"}) {
        pane.data->Watermarks().Append(std::make_unique<ZANWatermark>(
            (std::string("0,0,0,200,30,30,0,0,0,450,0,0,90,Helvetica-Bold,") + text).c_str()));
    }
    pane.data->SaveWatermarksToPreferences();
    return *pane.addressList;
}

std::string descriptionOf(const std::string& queue, const std::string& pcFileName, const std::string& note) {
    std::string text = panelDescription(jobNote("QVAccount", "20|Alpha|Remembered|PopupJN") +
                                        recordLines("QVDriverPreference", listWithWatermarks(queue)) +
                                        recordLines("QVPopupJnData", "111\n*QVAccount=" + note));
    text.replace(text.find("SMALL.PPD"), 9, pcFileName);
    return text;
}

TEST(PrinterChange, ListsWatermarkAccountsAndPopupNotesBelongToTheirQueue) {
    for (const auto& [queue, pcFileName, fold, isSame] : {std::tuple{"Press", "SMALL.PPD", "Half", true},
                                                          {"Second", "small.ppd", "Half", false},
                                                          {"Second", "OTHER.PPD", "Flat", false}}) {
        SCOPED_TRACE(std::string(queue) + " " + pcFileName);
        const std::string secondText = descriptionOf(queue, pcFileName, "second");
        Bench bench(descriptionOf("Press", "SMALL.PPD", "first"));
        bench.WriteList("<dict><key>PCFILENAME</key><array><string>SMALL.PPD</string><string>OTHER.PPD</"
                        "string></array></dict>");
        auto panel = bench.OpenShown();
        PDEData& data = *panel->GetPDEDataPtr();
        EXPECT_EQ(valueOf(*panel, "*QVAccount"), "first");
        ASSERT_EQ(data.Watermarks().Count(), 2U);
        data.Watermarks().Select(1);
        data.MixedMediaList().Append({L"*MM_A1", L"Card"});
        data.SlipSheetList().Append({L"SlipSheet_Tray", L"Upper"});
        bench.Store("*QVPCName", cfString("Catalogue"));
        set(*panel, "*QVFold", "Half");
        set(*panel, "*QVAccount", "typed");
        panel->saveValuesAndReturnError(nullptr);

        MemoryPrinter& printer = bench.Choose(queue, bench.folder.Write("Second.ppd", secondText));
        printer.deviceUri = "socket://10.0.0.8";
        bench.spooler->destinations.push_back({queue, destinationStateIdle, true});
        const auto other = bench.OpenShown(); // while the first exists, as the dialog does
        panel.reset();
        for (const bool again : {false, true}) {
            if (again) {
                other->restoreValuesAndReturnError(nullptr);
            }
            PDEData& there = *other->GetPDEDataPtr();
            EXPECT_EQ(there.Watermarks().SelectedIndex(), isSame ? 1 : -1);
            EXPECT_EQ(there.MixedMedia().size(), isSame ? 1U : 0U);
            EXPECT_EQ(there.SlipSheets().size(), isSame ? 1U : 0U);
            EXPECT_EQ(there.AccountPairs()[1].value, isSame ? L"Catalogue" : L"-1");
            EXPECT_EQ(valueOf(*other, "*QVFold"), fold);
            EXPECT_EQ(valueOf(*other, "*QVAccount"), isSame ? "typed" : "second");
            EXPECT_EQ(gPopupJobNotesSavedShowLast, '1');
        }
        // Its record is written only once the person has changed something of it.
        printer.sent.clear();
        if (!isSame) {
            EXPECT_TRUE(other->shouldPrint());
            EXPECT_THAT(bench.SentTitles(), Not(Contains("command_PopupJnData")));
        }
        set(*other, "*QVAccount", "mine");
        EXPECT_TRUE(other->shouldPrint());
        ASSERT_THAT(bench.SentTitles(), Contains("command_PopupJnData"));
        EXPECT_EQ(utf8Text(printer.sent.back().command), "111\n*QVAccount=mine");
    }
}

TEST(PrinterChange, TheTemplateCountsForThoseWhoPrintedBefore) {
    const std::string xml = "<Category name=\"UI-Modification\">\n<Controls>\n"
                            "<ZANPPD key=\"MM_A1\" default=\"Card\"/>\n"
                            "<ZANPPD key=\"SlipSheet_Tray\" default=\"Upper\"/>\n"
                            "<ZANPPD key=\"QVNotes1\" default=\"of the house\"/>\n"
                            "</Controls>\n</Category>";
    Bench bench(panelDescription(templateLines(xml)));
    for (int i = 0; i < 3; ++i) {
        bench.dialog->settings = std::make_shared<MemoryPrintSettings>(); // a new dialog
        const auto panel = bench.OpenShown();
        PDEData& data = *panel->GetPDEDataPtr();
        EXPECT_EQ(valueOf(*panel, "*QVNotes1"), "of the house");
        EXPECT_EQ(bench.Stored("*QVNotes1"), "of the house");
        EXPECT_THAT(pairsOf(data.MixedMedia()), ElementsAre("*MM_A1=Card"));
        const auto sheets = pairsOf(data.SlipSheets());
        ASSERT_FALSE(sheets.empty());
        EXPECT_EQ(sheets.front(), "SlipSheet_Tray=Upper");
        EXPECT_EQ(sheets.size(), i == 0 ? 1U : 2U) << "an own one stays, nothing grows";
        // What the person changes stays for this panel.
        set(*panel, "*QVNotes1", "mine");
        panel->saveValuesAndReturnError(nullptr);
        panel->restoreValuesAndReturnError(nullptr);
        EXPECT_EQ(valueOf(*panel, "*QVNotes1"), "mine");
        if (i == 0) {
            data.SlipSheetList().Append({L"SlipSheet_Color", L"Blue"});
        }
        EXPECT_TRUE(panel->shouldPrint());
    }
}

TEST(PrinterChange, TheOlderPanelAsksForItsOwnPopupNotesAgain) {
    Bench bench(descriptionOf("Press", "SMALL.PPD", "first"));
    const auto older = bench.OpenShown();
    set(*older, "*QVAccount", "typed");
    const auto asking = bench.dialog->printer;
    bench.Choose("Silent", bench.folder.Write("Silent.ppd", panelDescription()));
    auto newer = bench.OpenShown();
    EXPECT_TRUE(hasNoPopupJobNotes());
    EXPECT_EQ(gPopupJobNotesSavedShowLast, '0');
    newer.reset();
    bench.dialog->printer = asking;
    EXPECT_FALSE(hasNoPopupJobNotes());
    EXPECT_EQ(gPopupJobNotesSavedShowLast, '1');
    asking->sent.clear();
    EXPECT_TRUE(older->shouldPrint());
    EXPECT_EQ(bench.widgets.popups, 1);
    ASSERT_FALSE(asking->sent.empty());
    EXPECT_EQ(utf8Text(asking->sent.back().command), "111\n*QVAccount=typed");
    // What the queue has stored of them is known behind another dialog, too: a cleared text goes there.
    bench.Choose("Silent", bench.folder.Write("Silent.ppd", panelDescription()));
    newer = bench.OpenShown();
    bench.dialog->printer = asking;
    older->becomeCurrent();
    gPopupJobNotesSavedEnable = '0';
    gPopupJobNotesSavedSetting = '1';
    gPopupJobNotesSavedShowLast = '0';
    set(*older, "*QVAccount", "");
    asking->sent.clear();
    EXPECT_TRUE(older->shouldPrint());
    ASSERT_FALSE(asking->sent.empty());
    EXPECT_EQ(utf8Text(asking->sent.back().command), "010");
}

TEST(PrinterChange, TheQuickAccessThatAnotherDialogAddsOutlivesTheReturnToTheFirst) {
    Bench bench(panelDescription("*%QVShortcut *QVFold\n"));
    const auto first = bench.OpenShown();
    PPDTree opened = UI_Panel::Tree; // as the first dialog's sheet shows it
    const auto second = bench.OpenShown();
    PPDTree added = UI_Panel::Tree;
    added.quickAccess.push_back({"", "*QVDuplex", 0});
    EXPECT_TRUE(second->GetPDEDataPtr()->SetPPDShortcuts(added));
    first->becomeCurrent();
    EXPECT_EQ(UI_Panel::Tree.quickAccess.size(), 1U);
    opened.quickAccess.push_back({"", "*QVNotes1", 0});
    EXPECT_TRUE(first->GetPDEDataPtr()->SetPPDShortcuts(opened));
    PPDTree read;
    EXPECT_TRUE(first->GetPDEDataPtr()->GetPPDShortcuts(read));
    std::vector<std::string> keywords;
    std::ranges::transform(read.quickAccess, std::back_inserter(keywords), &PPDTreeQuickAccess::keyword);
    EXPECT_THAT(keywords, testing::UnorderedElementsAre("*QVFold", "*QVDuplex", "*QVNotes1"));
}

// Each dialog's own notes, popups and module, whichever was opened or used last.
TEST(PrinterChange, TwoDialogsOpenAtOnceDoNotMixTheirTexts) {
    const std::string popupNote = jobNote("QVAccount", "20|Alpha|PopupJN");
    std::string japanese = panelDescription();
    japanese.replace(japanese.find("ISOLatin1"), 9, "JIS83-RKSJ");
    Bench bench(panelDescription(popupNote));
    const auto latinPrinter = bench.dialog->printer;
    const auto latin = bench.OpenShown();
    set(*latin, "*QVNotes1", "B\u00FCro");
    gPopupJobNotesDefaultsButton = 1;
    bench.Choose("Japan", bench.folder.Write("Japan.ppd", japanese));
    bench.spooler->destinations.push_back({"Japan", destinationStateIdle, true});
    const auto japanPrinter = bench.dialog->printer;
    auto other = bench.OpenShown();
    const auto use = [&](TorkaFeaturesPDE& panel, const PMPrinter& printer) {
        bench.dialog->printer = std::dynamic_pointer_cast<MemoryPrinter>(printer);
        panel.becomeCurrent();
    };
    set(*other, "*QVNotes1", "\u65E5\u672C");
    use(*latin, latinPrinter);
    EXPECT_EQ(jobPropertiesHost(), latin.get());
    EXPECT_EQ(valueOf(*latin, "*QVNotes1"), "B\u00FCro");
    EXPECT_EQ(gPopupJobNotesDefaultsButton, 1);
    EXPECT_FALSE(hasNoPopupJobNotes());
    use(*other, japanPrinter);
    EXPECT_EQ(valueOf(*other, "*QVNotes1"), "\u65E5\u672C");
    EXPECT_TRUE(hasNoPopupJobNotes());
    bench.dialog->printer = latinPrinter;
    EXPECT_TRUE(latin->shouldPrint()); // nobody has told it that it is the current one
    EXPECT_EQ(bench.widgets.popups, 1);
    EXPECT_EQ(valueOf(*latin, "*QVNotes1"), "B\u00FCro");
    use(*other, japanPrinter);
    other.reset();
    set(*latin, "*QVNotes1", "M\u00FCll");
    EXPECT_EQ(valueOf(*latin, "*QVNotes1"), "M\u00FCll");
}

TEST(PrinterChange, ANewDialogTellsWhenTheLastJobsSettingsAreNotTheDefaults) {
    for (const bool isDefault : {true, false}) {
        Bench bench(panelDescription(jobNote("QVAccount", "20|Alpha|PopupJN")));
        for (const bool printedBefore : {false, true}) {
            bench.dialog->settings = std::make_shared<MemoryPrintSettings>();
            const auto panel = bench.OpenShown();
            EXPECT_EQ(panel->beganWithLastJob(), printedBefore && !isDefault);
            set(*panel, "*QVFold", isDefault ? "Flat" : "Half");
            set(*panel, "*QVAccount", "typed"); // asked for with each job, and not taken from the last one
            EXPECT_TRUE(panel->shouldPrint());
        }
    }
}

} // namespace

} // namespace torka::tests
