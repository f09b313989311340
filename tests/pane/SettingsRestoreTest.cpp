// SPDX-License-Identifier: Apache-2.0
#include "platform/TextEncoding.h"
#include "tests/pane/PaneFixture.h"

#include <gmock/gmock.h>

// Settings without a control: saved to the print settings and restored from arbitrary values.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void expectSame(const CFDictionaryRef& left, const CFDictionaryRef& right) {
    ASSERT_EQ(left->Pairs().size(), right->Pairs().size());
    for (std::size_t i = 0; i < left->Pairs().size(); ++i) {
        EXPECT_TRUE(CFEqual(left->Pairs()[i].first, right->Pairs()[i].first));
        EXPECT_TRUE(CFEqual(left->Pairs()[i].second, right->Pairs()[i].second))
            << utf8Text(left->Pairs()[i].first);
    }
}

TEST(PDEDataSettings, SavedAndRestoredAndSavedIsTheSame) {
    ScopedMemorySystem system;
    Pane pane(paneHeader);
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
    expectSame(first, pane.settings->CopyAsDictionary());

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

TEST(PDEDataSettings, HostileSettingsAreKeptWithinLimitsAndTheRestIsRestored) {
    ScopedMemorySystem system;
    Pane pane(paneHeader);
    const std::string megabyte(1'000'000, 'm');
    struct Case {
        CFTypeRef count;
        std::size_t restored;
    };
    const Case cases[] = {
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
    for (const Case& each : cases) {
        pane.Open();
        pane.Store(".MMKey", each.count);
        EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
        const std::vector<std::string> pairs = pairsOf(pane.data->MixedMedia());
        ASSERT_EQ(pairs.size(), each.restored);
        if (each.restored >= 2) {
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
}

} // namespace

} // namespace torka::tests
