// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "pane/data/ControlTables.h"
#include "tests/pane/PaneFixture.h"

#include <gmock/gmock.h>

// Tests the copy of the description, the controller's address, queries about controls, quick access,
// watermarks and the settings without a control.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using PDEDataTest = PaneTest;

TEST_F(PDEDataTest, CopyOfTheDescriptionFollowsTheSystemWhateverTheFileIsCalled) {
    system->root = "/root";
    const std::string text = paneHeader + popup("QVDuplex", {"None", "Tumble"});
    const std::string hostile = "a\"; touch x; `id` $(id) %s %n.ppd";
    // The copy's path is "" for the description's own path.
    const std::tuple<int, std::string, std::string, std::string> cases[] = {
        {15, "small.ppd", "/tmp/private/zancopy.ppd", "/tmp/private/zancopy.ppd"},
        {7, hostile, "/tmp/private/zancopy.ppd", "/tmp/private/zancopy.ppd"},
        {7, "small.txt", "/tmp/small.txt.ppd", "/tmp/private/zancopy.ppd"},
        {6, "small.ppd", "/tmp/small.ppd", "/root/tmp/small.ppd"},
        {6, hostile, "/tmp/" + hostile, "/root/tmp/" + hostile},
        {5, "-rf", "/tmp/-rf.ppd", "/root/tmp/-rf.ppd"},
        {15, "refused.ppd", "", ""},
    };
    for (const auto& [minorVersion, name, copyPath, writtenTo] : cases) {
        SCOPED_TRACE(name);
        Pane pane(text, name);
        const std::string ownPath = pane.folder / name;
        system->minorVersion = minorVersion;
        system->files.clear();
        system->files[ownPath] = {text, 0644};
        system->writeFailure = [isRefused = writtenTo.empty()](const auto&) {
            return isRefused ? std::make_error_code(std::errc::no_space_on_device) : std::error_code();
        };
        pane.Open();
        EXPECT_EQ(pane.data->PPDCopyPath(), copyPath.empty() ? ownPath : copyPath);
        EXPECT_EQ(system->files[writtenTo].content, writtenTo.empty() ? "" : text);
    }
}

TEST_F(BarePane, AddressComesFromTheListAndFirstFromTheQueue) {
    for (const auto& [uri, address] : {std::pair{"lpd://10.1.2.3/print", "10.1.2.3"},
                                       {"socket://press.example:9100", "press.example"},
                                       {"file:///dev/null", ""},
                                       {"", ""}}) {
        pane.addressList->clear();
        pane.printer->deviceUri = uri;
        pane.Open();
        EXPECT_TRUE(pane.data->isFirstLaunch());
        EXPECT_EQ(utf8Text(pane.data->GetPrinterAddress()), address);
        EXPECT_FALSE(pane.data->isBIDIEnabled());
        // The list now has an entry with the queue's address. With an empty address the pane asks the queue
        // again.
        pane.Open();
        EXPECT_EQ(pane.data->isFirstLaunch(), address[0] == '\0');
        EXPECT_EQ(utf8Text(pane.data->GetCorvianPrinterAddress()), address);
    }
    EXPECT_TRUE(pane.data->SetCorvianPrinterAddress(cfString("10.9.9.9"), true));
    bool isEnabled = false;
    pane.Open();
    EXPECT_EQ(utf8Text(pane.data->GetCorvianPrinterAddress(&isEnabled)), "10.9.9.9");
    EXPECT_TRUE(isEnabled);
    EXPECT_TRUE(pane.data->isBIDIEnabled());
    EXPECT_TRUE(pane.data->SetIPAddressEnabled(false));
    EXPECT_TRUE(pane.data->ResetCorvianPrinterList());
    EXPECT_FALSE(pane.data->isBIDIEnabled());

    // A property list that is no array counts as no list.
    *pane.addressList = "<plist version=\"1.0\"><string>Press</string></plist>";
    EXPECT_FALSE(pane.data->ResetCorvianPrinterList());
    EXPECT_FALSE(pane.data->isBIDIEnabled());
    pane.session->printer = nullptr;
    EXPECT_EQ(utf8Text(pane.data->GetCorvianPrinterAddress()), "");

    PDEData nameless(pane.model.get(), nullptr, QueueAccess{pane.session, {}},
                     [&] { return std::make_unique<StringStore>(pane.addressList); });
    PPDTree tree;
    EXPECT_FALSE(nameless.SetPPDShortcuts(tree));
    EXPECT_FALSE(nameless.GetPPDShortcuts(tree));
    EXPECT_TRUE(nameless.SetIPAddressEnabled(true));
}

TEST_F(BarePane, InputTrayOfTheSystemsPaneFollowsTheVersion) {
    std::string buffer(64, 'x');
    const auto feed = [&](int version, std::int64_t size = 64) {
        system->minorVersion = version;
        EXPECT_EQ(pane.data->GetPrimayPaperFeedFromOS(buffer.data(), size), 0);
        return std::string(buffer.c_str());
    };
    EXPECT_EQ(feed(15), "");
    pane.Store("com.apple.print.PrintSettings.PMPrimaryPaperFeed",
               CFArrayCreate({cfString("InputSlot"), cfString("Upper")}));
    pane.Store("InputSlot", cfString("Lower"));
    EXPECT_EQ(feed(5), "Upper");
    EXPECT_EQ(feed(6), "Lower");
    pane.Store("AP_FIRSTPAGE_InputSlot", cfString("Bypass"));
    EXPECT_EQ(feed(7), "Bypass");
    EXPECT_EQ(feed(7, 4), "Byp");
    pane.Store("com.apple.print.PrintSettings.PMPrimaryPaperFeed", CFArrayCreate({cfString("Upper")}));
    EXPECT_EQ(feed(5), "");
    pane.Store("com.apple.print.PrintSettings.PMPrimaryPaperFeed", CFNumberCreate(7.0));
    EXPECT_EQ(feed(5), "");
    buffer = "kept";
    EXPECT_EQ(feed(5, 0), "kept");
    EXPECT_EQ(pane.data->GetPrimayPaperFeedFromOS(nullptr, 64), 0);
}

TEST_F(PDEDataTest, ControlsOfTheBasicPanel) {
    std::string controls = popup("QVHidden", {"None"}, "Dynamic|NoTorkaDriverUI");
    for (const char* keyword : {"QVDuplex", "QVTrayBidi", "Bidi", "QVSimSpeed", "QVHTScreen", "QVColorMode",
                                "QVSlipSheetPaperCatalog"}) {
        controls += popup(keyword, {"None"});
    }
    controls += unit("QVUnit", {"A"});
    for (const bool hasCurve : {false, true}) {
        Pane pane(paneHeader + controls + (hasCurve ? popup("QVCurveAdjust", {"None"}) : ""));
        EXPECT_FALSE(pane.data->IsValidBasicPanelControl(nullptr));
        std::vector<std::string> valid;
        pane.model->GetControls()->ForEach([&](PPDXControl* control) {
            if (pane.data->IsValidBasicPanelControl(control)) {
                valid.emplace_back(control->Keyword());
            }
        });
        // The table names the slip sheet's catalogue without an asterisk, so that the entry hides nothing.
        std::vector<std::string> expected = {"*QVDuplex", "*QVColorMode", "*QVSlipSheetPaperCatalog"};
        if (hasCurve) {
            std::erase(expected, "*QVColorMode");
        }
        EXPECT_EQ(valid, expected);
    }
    EXPECT_TRUE(isSpecialHueKeeperControl("*QVSimulationX"));
    EXPECT_FALSE(isSpecialHueKeeperControl("QVSimulation"));
    EXPECT_FALSE(isExpertHueKeeperControl("*QVSimulationX"));
    EXPECT_FALSE(isBidiKeyword("Bidi"));
    for (const auto test :
         {isSpecialHueKeeperControl, isExpertHueKeeperControl, isHiddenFromBasicPanel, isBidiKeyword}) {
        EXPECT_FALSE(test(nullptr));
    }
}

TEST_F(PDEDataTest, QuickAccessComesBackWithoutWhatMayNotBeShown) {
    const std::string controls = popup("QVDuplex", {"None"}) + popup("QVStaple", {"None"}) +
                                 popup("QVHTScreen", {"None"}) + popup("QVFold", {"None"});
    Pane pane(paneHeader + controls +
              templateLines("<Category name=\"UI-Modification\">\n<Show>\n<ZANPPD key=\"QVFold\" "
                            "value=\"False\"/>\n</Show>\n</Category>"));
    PPDTree tree;
    tree.quickAccess = {{"old", "*QVOld", 3}};
    EXPECT_TRUE(pane.data->GetPPDShortcuts(tree));
    EXPECT_EQ(tree.quickAccess.size(), 1U) << "nothing kept leaves the tree as it is";

    tree.quickAccess.clear();
    for (const char* keyword :
         {"*QVStaple", "*QVHTScreen", "*QVGone", "*QVFold", "*QVD\xC3\xBCplex", "*QVDuplex"}) {
        tree.quickAccess.push_back({"", keyword, 0});
    }
    EXPECT_TRUE(pane.data->SetPPDShortcuts(tree));
    pane.Open();
    PPDTree read;
    EXPECT_TRUE(pane.data->GetPPDShortcuts(read));
    ASSERT_EQ(read.quickAccess.size(), 2U);
    EXPECT_EQ(read.quickAccess[0].keyword, "*QVStaple");
    EXPECT_EQ(read.quickAccess[0].userName, "QVStaple name");
    EXPECT_EQ(read.quickAccess[1].keyword, "*QVDuplex");

    tree.quickAccess.assign(200, {"", "*QVDuplex", 0});
    EXPECT_TRUE(pane.data->SetPPDShortcuts(tree));
    EXPECT_TRUE(pane.data->GetPPDShortcuts(read));
    EXPECT_EQ(read.quickAccess.size(), maximumQuickAccess);
}

// Two persons on one queue. Each row: what a person does with the watermarks of the queue, and what both see.
TEST_F(PDEDataTest, APersonsOwnListsWinOnceThatPersonHasChangedThem) {
    Pane pane(paneHeader + popup("QVDuplex", {"None"}) + popup("QVStaple", {"None"}));
    const auto open = [&](const char* person) {
        system->homeFolder = std::string("/home/") + person;
        pane.Open();
        pane.data->GetWatermarksFromPreferences();
    };
    const auto put = [&](const char* text) {
        pane.data->Watermarks().Append(std::make_unique<ZANWatermark>((std::string(14, ',') + text).c_str()));
    };
    // "": saves without a change, and the queue's list stays in force; "-": removes all.
    using Texts = std::vector<std::string>;
    for (const auto& [who, added, anna, bert] : {std::tuple{"anna", "A", Texts{"A"}, Texts{"A"}},
                                                 {"bert", "", {"A"}, {"A"}},
                                                 {"bert", "B", {"A"}, {"A", "B"}},
                                                 {"anna", "C", {"A", "C"}, {"A", "B"}},
                                                 {"anna", "-", {}, {"A", "B"}}}) {
        open(who);
        if (*added == '-') {
            pane.data->ForgetWatermarkPreferences();
        } else {
            if (*added != '\0') {
                put(added);
            }
            pane.data->SaveWatermarksToPreferences();
        }
        for (const auto& [person, expected] : {std::pair{"anna", anna}, std::pair{"bert", bert}}) {
            open(person);
            EXPECT_EQ(textsOf(pane.data->Watermarks()), expected) << person << " after " << who;
            pane.Store(".SelectedWatermarkKey", CFNumberCreate(1));
            pane.data->RestoreNonPSSettings();
            EXPECT_EQ(pane.data->Watermarks().SelectedIndex(), expected.size() > 1 ? 1 : -1);
        }
    }
    EXPECT_EQ(pane.addressList->find("<string>,,,,,,,,,,,,,,"), std::string::npos)
        << "the queue's last list is empty";

    PPDTree tree;
    open("anna");
    const auto choose = [&](const char* keyword, bool isWritable) {
        system->writeFailure = [isWritable](const auto&) {
            return isWritable ? std::error_code() : std::make_error_code(std::errc::permission_denied);
        };
        tree.quickAccess.push_back({"", keyword, 0});
        return pane.data->SetPPDShortcuts(tree);
    };
    EXPECT_TRUE(choose("*QVDuplex", false)) << "the queue keeps it";
    EXPECT_TRUE(choose("*QVStaple", true));
    EXPECT_FALSE(choose("*QVDuplex", false)) << "the own list stays in force without the change";
}

// Two dialogs of one person begin with the same list. Each row: that list, what each dialog makes of it, and
// what stands after the first and then the second has kept its own. A letter is a watermark.
TEST_F(BarePane, TwoDialogsKeepTheChangesOfEachOther) {
    const auto definition = [](char letter) { return std::string(14, ',') + letter; };
    const auto put = [&](PDEData& data, const std::string& letters) {
        data.Watermarks().Clear();
        for (const char letter : letters) {
            data.Watermarks().Append(std::make_unique<ZANWatermark>(definition(letter).c_str()));
        }
        letters.empty() ? data.ForgetWatermarkPreferences() : data.SaveWatermarksToPreferences();
    };
    const auto stored = [&] {
        std::string letters;
        pane.Open();
        pane.data->GetWatermarksFromPreferences();
        for (const std::string& text : textsOf(pane.data->Watermarks())) {
            letters += text;
        }
        return letters;
    };
    for (const auto& [before, first, second, after] : {std::tuple{"xyz", "axyz", "xyzb", "axyzb"},
                                                       {"xyz", "xyz", "xz", "xz"},
                                                       {"xyz", "xz", "xyz", "xz"},
                                                       {"xyz", "yz", "xy", "y"},
                                                       {"xyz", "xyzn", "xyzn", "xyzn"},
                                                       {"xyz", "xnz", "xyzm", "xnzm"},
                                                       {"xyz", "xnz", "xmz", "xmnz"},
                                                       {"xyz", "zyx", "xyzm", "zmyx"},
                                                       {"xyz", "nxyz", "zyx", "nzyx"},
                                                       {"xyz", "n", "", "n"},
                                                       {"xyz", "", "xyzm", "m"},
                                                       {"xxy", "xxyn", "xy", "xyn"},
                                                       {"xy", "xyn", "xxy", "xxyn"}}) {
        SCOPED_TRACE(std::string(before) + ": " + first + ", then " + second);
        system->files.clear();
        pane.addressList->clear();
        pane.Open();
        put(*pane.data, before);
        const auto one = pane.DataOf("Press");
        const auto two = pane.DataOf("Press");
        one->GetWatermarksFromPreferences();
        two->GetWatermarksFromPreferences();
        put(*one, first);
        put(*two, second);
        EXPECT_EQ(stored(), after);
        put(*one, first); // it changes nothing of what it kept
        EXPECT_EQ(stored(), after);
    }
}

TEST_F(BarePane, WatermarksAndTheirChoiceComeBack) {
    const std::string draft = "0,0,0,9,9,9,0,0,0,450,0,0,48,Helvetica,Draft, once";
    pane.data->SaveWatermarksToPreferences();
    EXPECT_EQ(pane.addressList->find("Draft"), std::string::npos);
    for (const std::string& definition : {draft, draft + " more", draft + std::string(4000, 'm')}) {
        pane.data->Watermarks().Append(std::make_unique<ZANWatermark>(definition.c_str()));
    }
    pane.data->SaveWatermarksToPreferences();
    const std::pair<CFTypeRef, int> cases[] = {
        {CFNumberCreate(2), 2}, {CFNumberCreate(3), -1}, {CFNumberCreate(-2), -1},
        {cfString("1"), -1},    {nullptr, -1},           {CFNumberCreate(2'000'000'000), -1}};
    for (const auto& [stored, restored] : cases) {
        pane.Open();
        EXPECT_EQ(pane.data->Watermarks().SelectedIndex(), -1);
        pane.Store(".SelectedWatermarkKey", stored);
        pane.Store("WatermarkFirstPageInfo", CFNumberCreate(0));
        EXPECT_TRUE(pane.data->GetWatermarksFromPreferences());
        EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
        EXPECT_EQ(pane.data->Watermarks().SelectedIndex(), restored);
        if (const ZANWatermark* watermark = pane.data->Watermarks().Selected()) {
            EXPECT_TRUE(watermark->IsFirstPageOnly()) << "any stored value sets it";
        }
    }
    ASSERT_EQ(pane.data->Watermarks().Count(), 3U);
    EXPECT_EQ(pane.data->Watermarks().At(0)->Definition(), draft);
    EXPECT_EQ(pane.data->Watermarks().At(2)->Definition().size(), 1023U);
}

// Settings without a control: saved to the print settings and restored from arbitrary values.
TEST_F(BarePane, SavedAndRestoredAndSavedIsTheSame) {
    pane.data->MixedMediaList().Append({L"*RangeProp1", L"1-3|Card"});
    pane.data->MixedMediaList().Append({L"*MM_A1", L"\u5370\u5237"});
    pane.data->PadCoverList().Append({L"PadCoverFront", L""});
    pane.data->SlipSheetList().Append({L"SlipSheet_Tray", L"Upper"});
    pane.data->CoverPageList().Append({L"CoverPage_Back", L"Yes"});
    EXPECT_EQ(pane.data->SaveNonPSSettings(), 0);
    const CFDictionaryRef first = pane.settings->CopyAsDictionary();
    std::vector<std::string> keys;
    for (const auto& [key, value] : first->Pairs()) {
        keys.push_back(utf8Text(key));
    }
    EXPECT_THAT(keys,
                ElementsAre("WatermarkFirstPageInfo", ".SelectedWatermarkKey", ".MMKey", "MMKey0", "MMValue0",
                            "MMKey1", "MMValue1", ".PadCov", "PCovKey0", "PCovValue0", ".CovPag",
                            "CovPagKey0", "CovPagValue0", ".SlpSht", "SlpShtKey0", "SlpShtValue0"));
    EXPECT_EQ(pane.Stored("MMValue1"), "\xE5\x8D\xB0\xE5\x88\xB7");
    EXPECT_EQ(pane.StoredNumber(".SelectedWatermarkKey"), -1);

    pane.Open();
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    EXPECT_THAT(pairsOf(pane.data->MixedMedia()),
                ElementsAre("*RangeProp1=1-3|Card", "*MM_A1=\xE5\x8D\xB0\xE5\x88\xB7"));
    EXPECT_EQ(pane.data->SaveNonPSSettings(), 0);
    EXPECT_TRUE(CFEqual(first, pane.settings->CopyAsDictionary()));

    // Account pairs are restored but never stored here. Any stored value sets the first-page flag.
    pane.Store("*QVPCName", cfString("Account 7"));
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    EXPECT_THAT(
        pairsOf(pane.data->PaperCatalogue()),
        ElementsAre("*QVPCMID=-1", "*QVPCName=Account 7", "*QVCoverSizePCMID=-1", "*QVCoverSizePCName=-1"));
    pane.settings->setResult = kPMGeneralError;
    EXPECT_EQ(pane.data->SaveNonPSSettings(), kPMGeneralError);
    pane.data->SetPrintSettings(nullptr);
    EXPECT_EQ(pane.data->SaveNonPSSettings(), -1);
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), -1);
}

TEST_F(BarePane, HostileSettingsAreKeptWithinLimitsAndTheRestIsRestored) {
    const std::string megabyte(1'000'000, 'm');
    const std::pair<CFTypeRef, std::size_t> cases[] = {
        {CFNumberCreate(2'000'000'000), 2048},         {CFNumberCreate(-5), 0},  {nullptr, 0},
        {CFNumberCreate(std::int64_t{1} << 40), 2048}, {CFNumberCreate(2.9), 2}, {CFNumberCreate(3), 3}};
    pane.Store("MMKey0", cfString("*" + megabyte));
    pane.Store("MMValue0", cfString(std::string(254, 'v') + "\xE5\x8D\xB0"));
    pane.Store("MMKey1", CFArrayCreate({}));
    pane.Store("MMValue1", cfString("second"));
    pane.Store(".SlpSht", CFNumberCreate(99));
    pane.Store("SlpShtKey15", cfString("SlipSheet_Last"));
    pane.Store("SlpShtKey16", cfString("SlipSheet_TooMany"));
    pane.Store("*QVPCMID", cfString(megabyte));
    pane.Store("*QVPCName", CFNumberCreate(7));
    for (const auto& [count, restored] : cases) {
        pane.Open();
        pane.Store(".MMKey", count);
        EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
        const std::vector<std::string> pairs = pairsOf(pane.data->MixedMedia());
        ASSERT_EQ(pairs.size(), restored);
        if (restored >= 2) {
            EXPECT_EQ(pairs[0], "*" + std::string(254, 'm') + "=" + std::string(254, 'v'));
            EXPECT_EQ(pairs[1], "=second");
        }
        EXPECT_EQ(pane.data->SlipSheets().size(), 16U);
        EXPECT_EQ(pairsOf(pane.data->SlipSheets())[15], "SlipSheet_Last=");
        EXPECT_EQ(pane.data->PaperCatalogue()[0].value.size(), accountValueSize - 1);
        EXPECT_EQ(pane.data->PaperCatalogue()[1].value, L"-1");
        EXPECT_EQ(pane.data->SaveNonPSSettings(), 0);
    }
    // A count that is no number leaves the list unchanged. A slot without stored texts keeps its texts.
    pane.Store(".MMKey", cfString("1"));
    pane.Store("MMKey0", nullptr);
    pane.Store("MMValue0", CFNumberCreate(1));
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    ASSERT_EQ(pane.data->MixedMedia().size(), 3U);
    EXPECT_EQ(pairsOf(pane.data->MixedMedia())[0], "*" + std::string(254, 'm') + "=" + std::string(254, 'v'));
    pane.Store(".MMKey", nullptr); // settings without this list end it
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    EXPECT_TRUE(pane.data->MixedMedia().empty());
}

} // namespace

} // namespace torka::tests
