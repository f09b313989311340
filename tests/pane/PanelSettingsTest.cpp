// SPDX-License-Identifier: Apache-2.0
#include "pane/data/ControlValueText.h"
#include "tests/pane/UIPanelFixture.h"

#include <gmock/gmock.h>

// Tests the settings that the Job Properties module receives, and the handling of its results.

namespace torka::tests {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string ofKind(const std::string& kind, std::string popupText) {
    return popupText.replace(popupText.find("PickOne"), 7, kind);
}

const std::string description =
    paneHeader + "*%ZANSpecialOption *QVUTF8_Version: 6\n" + popup("PageSize", {"A4", "A3"}) +
    popup("QVDuplex", {"None", "Tumble"}) + popup("QVBright", {"0", "1"}, "Setup") +
    ofKind("PickMany", popup("QVMarks", {"Crop", "Fold", "Color"})) +
    ofKind("Boolean", popup("Collate", {"False", "True"}, "Setup")) + range("QVScale", "25;400;5;100") +
    range("QVShift", "-50.0;50.0;0.1;0.0", "FloatRange") + jobNote("Notes1") + jobNote("Short", "4|UTF8") +
    popup("QVOutProfile", {"Press", "Coated"}) + popup("QVControlBar", {"Off", "Wide"}) +
    popup("QVPrintSize", {"SameAsPageSize", "CustomPrintSize"}) +
    "*%ParamCustomPrintSize Width: 1 points 283.46 936\n*%ParamCustomPrintSize Height: 2 points 419.53 "
    "1368\n" +
    unit("Unit", {"None", "Staple"});

struct Exchange {
    explicit Exchange(bool twoWay, const std::string& text = description)
        : pane(text) {
        pane.data->SetCorvianPrinterAddress(cfString("10.0.0.9"), twoWay);
        panel = std::make_unique<UI_Panel>(pane.data.get());
    }
    std::vector<std::string> Settings() {
        KeyValueList list;
        panel->GetDefaultSettings(list);
        return pairsOf(list.List());
    }
    // Passes the module's settings through the record to the panel.
    void Return(const std::vector<std::pair<std::string, std::string>>& settings) {
        KeyValueList list;
        for (const auto& [key, value] : settings) {
            list.AppendNarrow(key, value);
        }
        panel->SetUpdatedSettings(list.List());
    }

    ScopedMemorySystem system;
    Pane pane;
    std::unique_ptr<UI_Panel> panel;
};

TEST(PanelSettings, ListOfADescriptionWithoutTwoWayCommunication) {
    Exchange exchange(false);
    exchange.pane.settings->SetCopies(12345);
    exchange.pane.format->orientation = kPMLandscape;
    exchange.pane.data->SlipSheetList().Append({L"SlipSheet_Tray", L"Upper"});
    exchange.pane.data->MixedMediaList().Append({L"*MM_A1", L"\u5370"});
    exchange.pane.data->AccountPairs()[1].value = L"Account";
    exchange.pane.data->Watermarks().Select(2);
    EXPECT_THAT(exchange.Settings(),
                ElementsAre("QVUTF8_Version=6", "PageSize=A4", "QVDuplex=None", "QVBright=0", "QVMarks=Crop",
                            "Collate=False", "QVScale=100", "QVShift=0.000",
                            "Notes1=", "Short=", "QVOutProfile=Press", "QVPrintSize=SameAsPageSize",
                            "Unit=None", "CustomPrintSize=False", "QVControlBar=Off", "*QV_WATERMARK=2",
                            "*QV_WATERMARK_FIRSTPAGEONLY=False", "QVPCMID=-1", "QVPCName=-1",
                            "QVCoverSizePCMID=-1", "QVCoverSizePCName=-1", "*QV_COPIES=9999",
                            "num copies=9999", "*QVOrientation=Landscape", "*MM_A1=\xE5\x8D\xB0",
                            "SlipSheet_Tray=Upper"));
    EXPECT_EQ(fieldText(exchange.panel->Record().installableOptions), "12,");
    exchange.Return({{"QVPCName", "-1"}});
    EXPECT_EQ(exchange.pane.data->AccountPairs()[1].value, L"Account");
}

TEST(PanelSettings, ListWithTwoWayCommunicationAndACustomPaper) {
    Exchange exchange(true, description + popup("QVOrientation", {"Portrait", "Landscape"}));
    Pane& pane = exchange.pane;
    for (const auto& [keyword, value] : {std::pair{"*QVDuplex", "Tumble"},
                                         {"*QVOutProfile", "Coated"},
                                         {"*QVControlBar", "Wide"},
                                         {"*QVPrintSize", "CustomPrintSize"},
                                         {"*CustomPrintSize", "595.4 841.6"},
                                         {"*QVMarks", "Fold"}}) {
        pane.Set(keyword, value);
    }
    pane.model->GetControls()->FindPopup("*QVMarks", true)->SetKeywordSelect("Color", true);
    exchange.panel->makeJobNotesForSpecialControls();
    pane.model->GetControls()->FindJobNote("*QVControlBar", true)->SetUTF8Notes(cfString("Server Bar"));
    pane.data->AccountPairs()[1].value = L"Account";
    pane.Store("WatermarkFirstPageInfo", CFNumberCreate(std::int32_t{1}));
    pane.Store(paperTicket, paper("Banner"));
    ASSERT_TRUE(exchange.panel->GetOSPageSize());
    const std::vector<std::string> settings = exchange.Settings();
    // Dynamic popups with their default are left out; other popups are not.
    EXPECT_THAT(settings,
                ElementsAre("QVUTF8_Version=6", "QVDuplex=Tumble", "QVBright=0", "QVMarks=Fold,Color",
                            "Collate=False", "QVScale=100", "QVShift=0.000",
                            "Notes1=", "Short=", "QVOutProfile=Coated", "QVPrintSize=CustomPrintSize",
                            "Unit=None", "CustomPrintSize=595.400024 841.599976", "PageSize=Custom",
                            "CustomPageSize=0.000000 0.000000", "QVControlBar=Server Bar",
                            "QVOutProfile=Coated", "*QV_WATERMARK=-1", "*QV_WATERMARK_FIRSTPAGEONLY=True",
                            "QVPCMID=-1", "QVPCName=Account", "QVCoverSizePCMID=-1", "QVCoverSizePCName=-1",
                            "*QV_COPIES=1", "num copies=1"));
}

// The fuzz target panel_return hands settings over and back, through the record, and requires that nothing
// changes.
TEST(PanelSettings, EachKeyGoesWhereItBelongs) {
    Exchange exchange(true);
    Pane& pane = exchange.pane;
    pane.Store("WatermarkFirstPageInfo", CFNumberCreate(0));
    exchange.panel->makeJobNotesForSpecialControls();
    pane.data->Watermarks().Append(std::make_unique<ZANWatermark>("0,0,0,0,0,0,0,0,0,0,0,0,48,Helvetica,A"));
    pane.data->SlipSheetList().Append({L"SlipSheet_Old", L"removed by the module"});
    exchange.Settings();
    exchange.Return({{"*QVDuplex", "Tumble"},
                     {"Collate", "TRUE"},
                     {"QVScale", "205"},
                     {"QVShift", "1.5"},
                     {"Notes1", "caf\xC3\xA9"},
                     {"Short", "12345"},
                     {"QVOutProfile", "Of the server"},
                     {"QVControlBar", "Server Bar"},
                     {"CustomPrintSize", "300 9000"},
                     {"Unit", "Staple"},
                     {"QVMarks", "Color,Fold"},
                     {"*QV_WATERMARK_FIRSTPAGEONLY", "True"},
                     {"*QV_WATERMARK", "0"},
                     {"*QV_COPIES", "12"},
                     {"num copies", "99"},
                     {"QVPCMID", "7"},
                     {"RangeProp1", "1-3"},
                     {"*QVCoverSizePCName", std::string(600, 'n')},
                     {"PadCoverFront", "Yes"},
                     {"*MM_A1", "Card"},
                     {"CoverPage_Back", "No"},
                     {"RangeProp1", "4-6"}});
    EXPECT_EQ(pane.StoredNumber("WatermarkFirstPageInfo"), 1);
    EXPECT_EQ(changesIn(*pane.model),
              "*QVDuplex=Tumble *QVMarks=Fold *Collate=True *QVScale=205 *QVShift=1.500 *Notes1=caf\xC3\xA9 "
              "*Short=1234 *QVOutProfile=Of the server *QVControlBar=Server Bar *Unit=Staple "
              "*QVOutProfile=Of the server *QVControlBar=Server Bar "); // the choices and their notes
    EXPECT_EQ(valueOf(pane, "*CustomPrintSize"), "300.000000 1368.000000");
    EXPECT_EQ(controlValueText(*pane.model->GetControls()->FindPopup("*QVMarks", true)), "Fold,Color");
    ASSERT_NE(pane.data->Watermarks().Selected(), nullptr);
    EXPECT_TRUE(pane.data->Watermarks().Selected()->IsFirstPageOnly());
    EXPECT_EQ(pane.data->GetNumCopiesFromOS(), 12u);
    EXPECT_THAT(pairsOf(pane.data->PaperCatalogue()),
                ElementsAre("QVPCMID=7", "*QVPCName=-1", "*QVCoverSizePCMID=-1",
                            "QVCoverSizePCName=" + std::string(accountValueSize - 1, 'n')));
    EXPECT_THAT(pairsOf(pane.data->MixedMedia()),
                ElementsAre("*RangeProp1=1-3", "*MM_A1=Card", "*RangeProp1=4-6"));
    EXPECT_THAT(pairsOf(pane.data->PadCovers()), ElementsAre("PadCoverFront=Yes"));
    EXPECT_THAT(pairsOf(pane.data->CoverPages()), ElementsAre("CoverPage_Back=No"));
    EXPECT_THAT(pairsOf(pane.data->SlipSheets()), IsEmpty());
}

TEST(PanelSettings, GarbageChangesNothing) {
    const CapturingLog log;
    Exchange exchange(false);
    const std::vector<std::string> before = exchange.Settings();
    const std::pair<std::string, std::vector<std::string>> garbage[] = {
        {"QVDuplex", {"Sideways", ""}},
        {"Collate", {"Maybe"}},
        {"QVScale", {"12 apples", "nan", ""}},
        {"QVShift", {"1e999", "0x10"}},
        {"QVMarks", {"Crop,Burn"}},
        {"QVOutProfile", {"line\nbreak", std::string(4000, 'p')}},
        {"CustomPrintSize", {"-5 300", "wide"}},
        {"PageSize", {"%n%s"}},
        {"*QV_WATERMARK", {"first"}},
        {"*QV_WATERMARK_FIRSTPAGEONLY", {"1"}},
        {"*QV_COPIES", {"0", "-2", "10000"}},
        {"QVUTF8_Version", {"1"}}, // special options cannot be set
        {std::string(5000, 'k'), {"x"}},
        {"**QVDuplex", {"Tumble"}},
        {"*", {"x"}},
        {"", {""}},
        {"\xFF\xFE", {"\xFF"}}};
    for (const auto& [key, values] : garbage) {
        for (const std::string& value : values) {
            exchange.Return({{key, value}});
            EXPECT_EQ(exchange.Settings(), before) << key << "=" << value;
        }
    }
    exchange.Return({{"QVScale", "99999999999999999999"}, {"*QV_WATERMARK", "88"}, {"QVShift", "-1000"}});
    EXPECT_EQ(valueOf(exchange.pane, "*QVScale"), "400");
    EXPECT_EQ(valueOf(exchange.pane, "*QVShift"), "-50.000");
    EXPECT_EQ(exchange.pane.data->Watermarks().SelectedIndex(), WatermarkList::noSelection);

    // Null texts, and counts without items, also change nothing.
    SDMKeyValue nothing[] = {{nullptr, nullptr}, {const_cast<wchar_t*>(L"QVDuplex"), nullptr}};
    exchange.panel->SetUpdatedSettings({2, nothing});
    exchange.panel->SetUpdatedSettings({5, nullptr});
    EXPECT_EQ(valueOf(exchange.pane, "*QVDuplex"), "None");
}

// The panel takes at most 3,000 entries, and the lists keep their capacities.
TEST(PanelSettings, FloodIsBounded) {
    Exchange exchange(false);
    std::vector<std::pair<std::string, std::string>> flood;
    for (int i = 0; i < 3500; ++i) {
        flood.emplace_back(i % 2 == 0 ? "MM_A" + std::to_string(i) : "QVOutProfile", "v" + std::to_string(i));
    }
    flood.emplace_back("QVDuplex", "Tumble");
    exchange.Return(flood);
    EXPECT_EQ(exchange.pane.data->MixedMediaList().Count(), 1500u);
    EXPECT_EQ(valueOf(exchange.pane, "*QVOutProfile"), "v2999");
    EXPECT_EQ(exchange.pane.model->GetControls()->FindPopup("*QVOutProfile", true)->ItemCount(), 3u);
    EXPECT_EQ(valueOf(exchange.pane, "*QVDuplex"), "None");
    for (auto& [key, value] : flood) {
        key = "PadCover" + value;
    }
    exchange.Return(flood);
    EXPECT_EQ(exchange.pane.data->PadCoverList().Count(), exchange.pane.data->PadCoverList().Capacity());
}

// Values that did not fit the record are still present after the module returns.
TEST(PanelSettings, WhatTheModuleNeverSawStays) {
    Exchange exchange(false);
    PDEData& data = *exchange.pane.data;
    for (int i = 0; i < 2048; ++i) {
        data.MixedMediaList().Append({L"MM_A" + std::to_wstring(i), L"x"});
    }
    for (int i = 0; i < 20; ++i) {
        data.Watermarks().Append(std::make_unique<ZANWatermark>(
            ("0,0,0,0,0,0,0,0,0,0,0,0,48,Helvetica," + std::string(900, static_cast<char>('a' + i)))
                .c_str()));
    }
    data.Watermarks().Select(15);
    auto record = std::make_unique<SharedMemoryList>();
    exchange.panel->GetWatermarks(*record);
    const std::size_t seen = watermarkDefinitions(*record).size();
    ASSERT_LT(seen, 15u);
    const std::vector<std::string> before = exchange.Settings();
    // The module adds one definition at the front and removes two.
    std::vector<std::string> edited = watermarkDefinitions(*record);
    edited.erase(edited.end() - 2, edited.end());
    edited.insert(edited.begin(), "0,0,0,0,0,0,0,0,0,0,0,0,9,Courier,New");
    setWatermarkDefinitions(*record, edited);
    const ZANWatermark* chosen = data.Watermarks().Selected();
    exchange.panel->UpdateWatermarks(*record);
    EXPECT_EQ(data.Watermarks().Count(), 19u);
    EXPECT_EQ(data.Watermarks().At(0)->Text(), "New");
    EXPECT_EQ(data.Watermarks().Selected(), chosen);
    exchange.Return({{"*QV_WATERMARK", "15"}}); // unchanged
    EXPECT_EQ(data.Watermarks().Selected(), chosen);
    EXPECT_EQ(data.MixedMediaList().Count(), 0u); // all entries had fitted the record
}

} // namespace

} // namespace torka::tests
