// SPDX-License-Identifier: Apache-2.0
#include "pane/presentation/JobSheets.h"

#include "tests/presentation/PresentationFixture.h"

#include <gmock/gmock.h>

#include <sstream>

namespace torka::tests {
namespace {

// What is drawn, in a few words.
std::string told(const JobSheets& sheets) {
    std::ostringstream text;
    if (sheets.paper.empty() && sheets.size) {
        text << sheets.size->width << 'x' << sheets.size->height;
    }
    text << sheets.paper << (sheets.IsSheetLandscape() ? " across " : " ") << sheets.columns << 'x'
         << sheets.rows;
    for (const bool back : {false, true}) {
        text << (back ? " back" : " front");
        for (const int number : sheets.PageNumbers(back)) {
            text << ' ' << number;
        }
        if (sheets.sides == JobSheets::Sides::one) {
            break;
        }
        text << (back ? (sheets.TurnEdge() == SheetEdge::top ? " at top" : " at left") : "");
    }
    for (const auto& staple : sheets.staples) {
        text << " staple " << staple.place.x << ',' << staple.place.y << '/' << staple.angle;
    }
    const auto holes = sheets.HolePlaces();
    if (!holes.empty()) {
        text << " holes " << holes.size() << " from " << holes.front().x << ',' << holes.front().y;
    }
    for (const double x : sheets.Folds()) {
        text << " fold " << static_cast<int>(x * 100);
    }
    for (const double x : sheets.Cuts()) {
        text << " cut " << static_cast<int>(x * 100);
    }
    if (!sheets.Leaves().empty()) {
        text << " leaves ";
        for (const auto leaf : sheets.Leaves()) {
            text << "pcisb"[static_cast<int>(leaf)];
        }
    }
    return text.str();
}

TEST(JobSheets, FollowTheSettings) {
    SpokenPane pane;
    const std::string plain = PaneEditor::Value(pane.Control("*PageSize")) + ' ';
    const std::pair<std::vector<std::pair<const char*, const char*>>, std::string> cases[] = {
        {{}, "1x1 front 1"},
        {{{"*QVNUpPages", "2"}}, "across 2x1 front 1 2"},
        {{{"*QVNUpPages", "8"}, {"*QVOrientation", "Landscape"}}, "2x4 front 1 2 3 4 5 6 7 8"},
        {{{"*QVNUpPages", "4"}, {"*QVNUpOption", "DownLeft"}}, "2x2 front 3 1 4 2"},
        {{{"*QVNUpPages", "4"}, {"*QVRepeatPage", "True"}, {"*QVDuplex", "ShortEdge"}},
         "2x2 front 1 1 1 1 back 2 2 2 2 at top"},
        {{{"*QVDuplex", "LongEdge"}}, "1x1 front 1 back 2 at left"},
        {{{"*QVDuplex", "LongEdge"}, {"*QVOrientation", "Landscape"}}, "across 1x1 front 1 back 2 at top"},
        {{{"*QVDuplex", "ShortEdge"}, {"*QVRIPBooklet", "Saddle"}},
         "across 2x1 front 0 1 back 2 0 at left fold 50"},
        {{{"*QVDuplex", "ShortEdge"}, {"*QVRIPBooklet", "Perfect"}},
         "across 2x1 front 4 1 back 2 3 at left fold 50"},
        {{{"*QVDuplex", "ShortEdge"}, {"*QVRIPBooklet", "Perfect"}, {"*QVBookBinding", "Right"}},
         "across 2x1 front 1 4 back 3 2 at left fold 50"},
        {{{"*QVDuplex", "ShortEdge"}, {"*QVRIPBooklet", "Speed"}},
         "across 2x1 front 1 0 back 0 2 at left cut 50"},
        {{{"*QVStaple", "Front"}}, "1x1 front 1 staple 0.06,0.06/-45"},
        {{{"*QVStaple", "Dual"}, {"*QVPunchHoles", "Two"}},
         "1x1 front 1 staple 0.06,0.3/90 staple 0.06,0.7/90 holes 2 from 0.045,0.365"},
        {{{"*QVFoldStyle", "Z"}}, "1x1 front 1 fold 50 fold 75"},
        {{{"*QVBannerPage", "Both"}, {"*QVInsertSheets", "Front"}, {"*QVSlipSheet", "Set"}},
         "1x1 front 1 leaves bippsb"},
        {{{"*QVBookCoverEnabled", "True"}, {"*QVBookBkCover", "Inside"}, {"*QVInterlvMedia", "True"}},
         "1x1 front 1 leaves cpipic"},
    };
    for (const auto& [settings, expected] : cases) {
        for (const auto& [keyword, value] : settings) {
            // The print dialog sets the orientation, not the person in the pane.
            pane.pane->Set(keyword, value);
            EXPECT_EQ(PaneEditor::Value(pane.Control(keyword)), value);
        }
        const JobSheets sheets = jobSheets(pane.editor, nullptr, nullptr);
        EXPECT_EQ(told(sheets), plain + expected);
        const auto sentences = jobSentences(pane.texts, sheets);
        EXPECT_EQ(sentences.size(), settings.size() + 1) << joined(sentences);
        for (const auto& [keyword, value] : settings) {
            pane.pane->Set(keyword, pane.Control(keyword).DefaultText().c_str());
        }
    }
}

// A choice that the table does not name, a watermark, and settings of the dialog.
TEST(JobSheets, TakeWhatIsKnown) {
    SpokenPane pane(paneHeader + popup("QVStaple", {"Diagonal", "Dual"}) +
                    popup("Duplex", {"None", "DuplexTumble"}));
    EXPECT_EQ(told(jobSheets(pane.editor, nullptr, nullptr)), " 1x1 front 1");
    pane.editor.SetValue("*Duplex", "DuplexTumble");
    EXPECT_EQ(told(jobSheets(pane.editor, nullptr, nullptr)), " 1x1 front 1 back 2 at top");
    pane.pane->data->Watermarks().Append(
        std::make_unique<ZANWatermark>("0,0,0,255,140,0,0,0,0,450,0,0,96,Helvetica-Bold,SECRET"));
    pane.pane->data->Watermarks().Select(0);
    pane.pane->format->orientation = kPMLandscape;
    const std::string layout = "com.apple.print.PrintSettings.PMLayout";
    pane.pane->Store(layout + "Rows", CFNumberCreate(2));
    pane.pane->Store(layout + "Columns", CFNumberCreate(4000));
    pane.pane->Store(layout + "NUp", CFBooleanCreate(true));
    const JobSheets sheets = jobSheets(pane.editor, pane.pane->data.get(), nullptr);
    ASSERT_TRUE(sheets.watermark);
    EXPECT_EQ(sheets.columns * sheets.rows, 16) << "within bounds";
    EXPECT_TRUE(sheets.IsSheetLandscape());
    EXPECT_THAT(jobSentences(pane.texts, sheets),
                testing::ElementsAre("Duplex name: DuplexTumble", "Watermark: SECRET"));
}

// Sizes without a name: of the printer's own setting, and of the print dialog.
TEST(JobSheets, CustomSizesCount) {
    SpokenPane pane;
    PDEData& data = *pane.pane->data;
    const auto isDrawn = [&](const char* size, const char* sentence) {
        const JobSheets sheets = jobSheets(pane.editor, &data, nullptr);
        EXPECT_EQ(told(sheets), std::string(size) + " 1x1 front 1");
        EXPECT_THAT(jobSentences(pane.texts, sheets), testing::ElementsAre(sentence));
    };
    pane.pane->Store(paperTicket, paper(nullptr, {0, 0, 600, 400}));
    isDrawn("Letter", "Page Size: US Letter");
    data.SetPageSizeFromOS(true);
    isDrawn("400x600", "Page Size: 141.1 × 211.7 mm");
    pane.editor.SetValue("*QVPrintSize", "CustomPrintSize");
    pane.pane->Set("*CustomPrintSize", "300 500");
    isDrawn("300x500", "Print Size: 105.8 × 176.4 mm");
    pane.pane->Set("*QVPrintSize", "SameAsPageSize");
    pane.pane->Store(paperTicket, cfString("damaged"));
    isDrawn("Letter", "Page Size: US Letter");
}

// A place that is named for one orientation is drawn for that orientation.
TEST(JobSheets, StaplesOfTheStandardChoices) {
    SpokenPane pane(paneHeader + popup("StapleLocation", {"None", "SinglePortrait", "SingleLandscape",
                                                          "DualLandscape", "UpperRight", "Elsewhere"}));
    for (const auto& [choice, portrait, landscape] :
         {std::tuple{"None", "", ""},
          {"SinglePortrait", " staple 0.06,0.06/-45", ""},
          {"SingleLandscape", "", " staple 0.06,0.06/-45"},
          {"DualLandscape", "", ""},
          {"UpperRight", " staple 0.94,0.06/45", " staple 0.94,0.06/45"},
          {"Elsewhere", "", ""}}) {
        pane.editor.SetValue("*StapleLocation", choice);
        for (const bool isAcross : {false, true}) {
            pane.pane->format->orientation = isAcross ? kPMLandscape : kPMPortrait;
            EXPECT_EQ(told(jobSheets(pane.editor, pane.pane->data.get(), nullptr)),
                      (isAcross ? std::string(" across 1x1 front 1") + landscape
                                : std::string(" 1x1 front 1") + portrait))
                << choice;
        }
    }
}

} // namespace
} // namespace torka::tests
