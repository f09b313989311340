// SPDX-License-Identifier: Apache-2.0
#include "tests/pane/PaneFixture.h"

#include <gmock/gmock.h>

// Tests the settings that the management template hides, locks and sets.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using ManagementTemplate = PaneTest;

const std::string categoryStart = "<Category name=\"UI-Modification\">\n";

TEST_F(ManagementTemplate, HidesAndLocksByPlainTextSearch) {
    const std::string hidden = "<ZANPPD key=\"QVDuplex\" value=\"False\"/>\n";
    const std::pair<std::string, bool> cases[] = {
        {categoryStart + "<Show>\n" + hidden + "</Show>\n</Category>", true},
        {categoryStart + "<Show>" + hidden + "</Show></Category>", true},
        {"<Show>" + hidden + "</Show>" + categoryStart + "</Category>", false},
        {categoryStart + "</Category><Show>" + hidden + "</Show>", false},
        {categoryStart + "<Show>" + hidden + "</Category></Show>", false},
        {categoryStart + "<Show>" + hidden + "</Show>", false},
        {categoryStart + "<Show>" + hidden + "</Category>", false},
        {categoryStart + "<Show></Show></Category>", false},
        {categoryStart + "<Show></Show>" + hidden + "</Category>", false},
        {"<Category name=\"Other\"><Show>" + hidden + "</Show></Category>", false},
        // A value behind the entry's end does not belong to it.
        {categoryStart + "<Show><ZANPPD key=\"QVDuplex\"/> value=\"False\"</Show></Category>", false},
        {categoryStart +
             "<Show><ZANPPD key=\"QVDuplex\"/><ZANPPD key=\"X\" value=\"False\"/></Show></Category>",
         false},
        {categoryStart + "<Show><ZANPPD key=\"QVDuplex\" value=\"True\"/>" + "</Show></Category>", false},
        {categoryStart + "<Show><ZANPPD key=\"QVDuplex\" value=\"False\"</Show></Category>", false},
        // An entry without an end continues into the next entry, even outside its section.
        {categoryStart + "<Show><ZANPPD key=\"QVDuplex\"</Show></Category> value=\"False\"/>", true},
        {categoryStart + "<Show><ZANPPD key=\"QVDuplexX\" value=\"False\"/></Show></Category>", false},
    };
    for (const auto& [xml, hides] : cases) {
        Pane pane(paneHeader + templateLines(xml));
        ASSERT_FALSE(pane.model->DMTXmlData().empty());
        SCOPED_TRACE(xml);
        for (const char* keyword : {"*QVDuplex", "QVDuplex", "before*QVDuplex"}) {
            EXPECT_EQ(pane.data->dmtHides(keyword), hides) << keyword;
            EXPECT_FALSE(pane.data->dmtLocks(keyword));
        }
        EXPECT_FALSE(pane.data->dmtHides("**QVDuplex"));
    }
    Pane locking(
        paneHeader +
        templateLines(categoryStart + "<Lock><ZANPPD key=\"QVDuplex\" value=\"True\"/></Lock></Category>"));
    EXPECT_TRUE(locking.data->dmtLocks("*QVDuplex"));
    EXPECT_FALSE(locking.data->dmtHides("*QVDuplex"));
    Pane none(paneHeader);
    EXPECT_FALSE(none.data->dmtHides("*QVDuplex"));
    std::vector<std::string> keys;
    EXPECT_FALSE(none.data->fetchHiddenKeysFromDMTXML(keys));
    EXPECT_FALSE(none.data->dmtSetNonPPDKeys());
}

TEST_F(ManagementTemplate, KeysWithoutControlAreTakenOverOnce) {
    std::string xml = categoryStart + "<Controls>\n<ZANPPD key=\"NoDefault\"/>\n";
    for (const auto& [key, text] : {std::pair{"SlipSheet_B", "slip b"},
                                    {"RangeNum", "2"},
                                    {"MM_A1", "\xE5\x8D\xB0"},
                                    {"MM_A1", "a later one"},
                                    {"MM_B1", "none of ours"},
                                    {"PadCoverFront", "yes"},
                                    {"CoverPage_A", "cover"},
                                    {"QVPCName", "Account"},
                                    {"QVCoverSizePCMID", "12"},
                                    {"QVCoverSizePCName", "13"},
                                    {"Notes1", "a note"},
                                    {"CustomPrintSize", "300 400"}}) {
        xml += std::string("<ZANPPD key=\"") + key + "\" default=\"" + text + "\"/>\n";
    }
    xml += "</Controls>\n<Show>\n<ZANPPD key=\"QVFold\" value=\"False\"/>\n"
           "<ZANPPD key=\"QVAny\" value=\"True\"/>\n</Show>\n</Category>";
    Pane pane(paneHeader + jobNote("Notes1") + popup("QVPrintSize", {"SameAsPageSize", "CustomPrintSize"}) +
              "*%ParamCustomPrintSize Width: 1 points 283.46 936\n*%ParamCustomPrintSize Height: 2 points "
              "119.53 1368\n" +
              templateLines(xml));
    pane.Store(".MMKey", CFNumberCreate(1));
    pane.Store("MMKey0", cfString("*RangeProp9"));
    pane.Store(".SlpSht", CFNumberCreate(2));
    pane.Store("SlpShtKey0", cfString("SlipSheet_A"));
    pane.Store("SlpShtKey1", cfString("SlipSheet_C"));
    ::testing::internal::CaptureStderr();
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    pane.data->TakeTemplate();
    const std::string told = ::testing::internal::GetCapturedStderr();
    EXPECT_NE(told.find("DMT Control Key"), std::string::npos);
    EXPECT_THAT(pairsOf(pane.data->MixedMedia()), ElementsAre("*MM_A1=\xE5\x8D\xB0", "*RangeNum=2"));
    EXPECT_THAT(pairsOf(pane.data->PadCovers()), ElementsAre("PadCoverFront=yes"));
    EXPECT_THAT(pairsOf(pane.data->SlipSheets()),
                ElementsAre("SlipSheet_B=slip b", "SlipSheet_A=", "SlipSheet_C="));
    EXPECT_THAT(pairsOf(pane.data->CoverPages()), ElementsAre("CoverPage_A=cover"));
    EXPECT_THAT(pairsOf(pane.data->PaperCatalogue()),
                ElementsAre("*QVCoverSizePCMID=12", "*QVCoverSizePCName=13", "*QVPCName=Account",
                            "*QVCoverSizePCName=-1"));
    EXPECT_EQ(pane.StoredNumber(".MMKey"), 2);
    EXPECT_EQ(pane.StoredNumber(".PadCov"), 1);
    EXPECT_EQ(pane.Stored("RangeNum"), "2");
    EXPECT_EQ(pane.Stored("*RangeNum"), "");
    EXPECT_EQ(pane.Stored("QVPCName"), "Account");
    EXPECT_EQ(pane.Stored("*QVPCName"), "Account");
    EXPECT_EQ(pane.Stored("*Notes1"), "a note");
    EXPECT_EQ(utf8Text(pane.model->CopyValueForKey(cfString("*Notes1"))), "a note");
    EXPECT_EQ(pane.Stored("*CustomPrintSize"), "300 400");
    EXPECT_EQ(utf8Text(pane.model->CopyValueForKey(cfString("*CustomPrintSize"))), "300.000000 400.000000");
    EXPECT_EQ(pane.Stored("MM_B1"), "");

    // The template is applied once for a panel: later changes by the user stay.
    pane.data->MixedMediaList().SetCount(0);
    EXPECT_EQ(pane.data->SaveNonPSSettings(), 0);
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    pane.data->TakeTemplate();
    EXPECT_TRUE(pane.data->MixedMedia().empty());

    // The next panel does not count what the last one took. Taken by itself, the slots are filled from the
    // first one, but the counts continue from their old values.
    pane.Open();
    EXPECT_EQ(pane.data->RestoreNonPSSettings(), 0);
    pane.data->TakeTemplate();
    EXPECT_EQ(pane.data->SlipSheets().size(), 3U);
    EXPECT_TRUE(pane.data->dmtSetNonPPDKeys());
    EXPECT_EQ(pane.data->SlipSheets().size(), 4U);
    EXPECT_EQ(pane.data->MixedMedia().size(), 2U);

    std::vector<std::string> keys;
    EXPECT_TRUE(pane.data->fetchHiddenKeysFromDMTXML(keys));
    EXPECT_THAT(keys, ElementsAre("*QVAny", "*QVFold"));
}

TEST_F(ManagementTemplate, MoreKeysThanSlotsAndAnUnreadableDocument) {
    std::string xml = categoryStart + "<Controls>\n";
    for (int i = 100; i < 140; ++i) {
        xml += "<ZANPPD key=\"CoverPage_" + std::to_string(i) + "\" default=\"1\"/>\n";
        xml += "<ZANPPD key=\"QVPCMID" + std::to_string(i) + "\" default=\"1\"/>\n";
    }
    ::testing::internal::CaptureStderr();
    {
        Pane pane(paneHeader + templateLines(xml + "</Controls>\n"));
        pane.data->TakeTemplate();
        EXPECT_EQ(pane.data->CoverPages().size(), 16U);
        EXPECT_EQ(pane.data->PaperCatalogue()[3].key, L"*QVPCMID103");
    }
    Pane broken(paneHeader + templateLines(xml + "\xC3(\n</Controls>"));
    broken.Store(".MMKey", CFNumberCreate(1));
    EXPECT_EQ(broken.data->RestoreNonPSSettings(), 0);
    broken.data->TakeTemplate();
    EXPECT_EQ(broken.data->MixedMedia().size(), 1U) << "nothing is lost";
    std::vector<std::string> keys;
    EXPECT_FALSE(broken.data->fetchHiddenKeysFromDMTXML(keys));
    ::testing::internal::GetCapturedStderr();
}

} // namespace

} // namespace torka::tests
