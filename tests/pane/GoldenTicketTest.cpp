// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXControls.h"
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"
#include "output/FeatureEmission.h"
#include "platform/TextEncoding.h"
#include "spooler/SpliceFile.h"
#include "spooler/TicketReader.h"
#include "tests/pane/PaneFixture.h"

#include <gtest/gtest.h>

#include <fstream>

// Compares whole tickets with those in tests/pane/golden, which were reviewed line by line. Writes a ticket
// that differs to golden/ in the build folder, for diff.

namespace torka::tests {

namespace {

using Texts = std::vector<std::pair<const char*, const char*>>;

struct Situation {
    std::string name;
    std::string sample = {};      // file in samples/; "" to use `description`
    std::string description = {}; // text of a small description
    Texts values = {};
    bool isTwoWay = false;
    std::uint16_t orientation = kPMPortrait;
    HostApplication host = {"org.torka.editor", "2.1", "Page Editor"};
    Texts accounts = {};
    int pagesASheet = 1; // placed side by side
    bool isPageSizeFromSystem = false;
    bool isPrinted = false;
    Texts mixedMedia = {}, padCovers = {}, slipSheets = {}, coverPages = {};
    const char* watermark = "";
    // Keywords and texts of notes beside controls of the same keywords. A panel makes such notes for choices
    // that the controller supplies.
    Texts madeNotes = {};
};

void PrintTo(const Situation& situation, std::ostream* stream) { *stream << situation.name; }

// Every control with special handling, and one without.
std::string smallDescription(const std::string& version, const std::string& language = "English",
                             const std::string& makerVersion = "4.2") {
    return paneHeader + "*LanguageVersion: " + language + "\n*%QVVersion: \"" + makerVersion + "\"\n" +
           (version.empty() ? "" : "*%ZANSpecialOption *QVUTF8_Version: " + version + "\n") +
           popup("PageSize", {"A4", "Letter"}) + popup("QVDuplex", {"None", "Tumble"}) +
           popup("QVOrientation", {"Portrait", "Landscape"}) + popup("Collate", {"True", "False"}) +
           popup("QVPrintSize", {"SameAsPageSize", "A4", "Letter", "CustomPrintSize"}) +
           "*%ParamCustomPrintSize Width: 1 points 283.46 936\n"
           "*%ParamCustomPrintSize Height: 2 points 419.53 1368\n" +
           popup("QVOutProfile", {"Coated", "Plain"}) + popup("QVSimulation", {"None", "Press"}) +
           popup("QVCurveAdjust", {"None", "Soft"}) + popup("QVControlBar", {"Narrow", "True", "Wide"}) +
           "*%ZANFlags *QVScale: Dynamic\n*%ZANGroup *QVScale: Group\n*%ZANRange *QVScale/Scale: "
           "5;400;1;100;\"<*QVScale>\"\n" +
           popup("QVDestination", {"Print", "File"}) + jobNote("QVMailboxName") + jobNote("Notes1");
}

std::string shown(std::string_view bytes) {
    const bool isText = decodeText(bytes, kCFStringEncodingUTF8).has_value();
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        const bool isMark = bytes.substr(i).starts_with("\xEF\xBB\xBF");
        if (byte == '\n') {
            text += i + 1 < bytes.size() ? "\n    |" : "";
            text += i + 1 < bytes.size() && bytes[i + 1] != '\n' ? " " : "";
        } else if (isMark) {
            text += "<EF><BB><BF>";
            i += 2;
        } else if (byte < ' ' || (byte >= 0x80 && !isText)) {
            constexpr char digits[] = "0123456789ABCDEF";
            text += {'<', digits[byte >> 4U], digits[byte & 15U], '>'};
        } else {
            text += bytes[i];
        }
    }
    return text +
           (bytes.ends_with('\n') || bytes.find('\n') == std::string_view::npos ? "" : "<no line end>");
}

std::string shown(const ZANJobTicket& ticket) {
    std::string text;
    for (const ZANJobTicket::Entry& entry : ticket.Entries()) {
        const std::string site = std::to_string(entry.site);
        text += std::string(4 - std::min<std::size_t>(site.size(), 4), ' ') + site + "| " +
                shown(entry.bytes) + "\n";
    }
    return text;
}

void fill(SettingList& list, const Texts& texts) {
    for (const auto& [key, value] : texts) {
        list.Append({wideFromUtf8(key), wideFromUtf8(value)});
    }
}

void prepare(Pane& pane, const Situation& situation) {
    pane.format->orientation = situation.orientation;
    for (const auto& [key, value] : situation.values) {
        pane.Set(key, value);
    }
    const std::string layout = "com.apple.print.PrintSettings.PMLayout";
    pane.Store(layout + "NUp", CFBooleanCreate(situation.pagesASheet > 1));
    pane.Store(layout + "Columns", CFNumberCreate(situation.pagesASheet));
    PDEData& data = *pane.data;
    data.SetIPAddressEnabled(situation.isTwoWay);
    data.SetPageSizeFromOS(situation.isPageSizeFromSystem);
    for (std::size_t i = 0; i < situation.accounts.size(); ++i) {
        data.AccountPairs()[i] = {wideFromUtf8(situation.accounts[i].first),
                                  wideFromUtf8(situation.accounts[i].second)};
    }
    fill(data.MixedMediaList(), situation.mixedMedia);
    fill(data.PadCoverList(), situation.padCovers);
    fill(data.SlipSheetList(), situation.slipSheets);
    fill(data.CoverPageList(), situation.coverPages);
    for (const auto& [keyword, text] : situation.madeNotes) {
        auto* note =
            new PPDXJobNote(keyword, cfString(keyword), nullptr, nullptr, 0, nullptr, 255, jobNoteUTF8, 0);
        note->SetNotes(text);
        pane.model->GetControls()->Add(note); // takes the ownership
    }
    if (situation.watermark[0] != '\0') {
        data.Watermarks().Append(std::make_unique<ZANWatermark>(situation.watermark));
        data.Watermarks().Select(0);
    }
}

const std::string english = smallDescription("6");

const Texts japanesePaper = {{"*QVPCName", "\xE5\x8D\xB0\xE5\x88\xB7"}};

const Situation situations[] = {
    {.name = "production",
     .sample = "torka-production.ppd",
     .values = {{"*PageSize", "A4"}, {"*QVScale", "85"}}},
    {.name = "production-two-way",
     .sample = "torka-production.ppd",
     .values = {{"*PageSize", "A4"},
                {"*QVPrintSize", "CustomPrintSize"},
                {"*CustomPrintSize", "595.4 841.6"},
                {"*QVDestination", "File"},
                {"*QVMailboxName", "proofs"},
                {"*QVControlBar", "Wide"},
                {"*QVCurveAdjust", "EFBBBFsoft (1)"},
                {"*Notes1", "first note"}},
     .isTwoWay = true,
     .orientation = kPMLandscape,
     .host = {"com.example.InDesign", "5.0.2", "Layout"},
     .accounts = {{"*QVPCMID", "4711"}, {"*QVPCName", "Gl\xC3\xA4nzend"}, {"*QVCoverSizePCMID", "-1"}}},
    {.name = "japanese", .sample = "torka-production-ja.ppd", .values = {{"*PageSize", "A4"}}},
    {.name = "japanese-two-way",
     .sample = "torka-production-ja.ppd",
     .values = {{"*Notes2", "\xE5\x8D\xB0\xE5\x88\xB7"}},
     .isTwoWay = true,
     .orientation = kPMReversePortrait,
     .accounts = {{"*QVPCMID", "12"}, japanesePaper[0]}},
    {.name = "defects", .sample = "torka-defects.ppd"},
    // The control bar and the catalogue's text depend on the version.
    {.name = "version-0",
     .description = smallDescription("", "Japanese", "3.1"),
     .values = {{"*QVControlBar", "Wide"}, {"*QVPrintSize", "Letter"}},
     .isTwoWay = true,
     .host = {},
     .accounts = {{"QVPCName", japanesePaper[0].second}}},
    {.name = "version-3",
     .description = smallDescription("3", "Japanese", "3.1"),
     .values = {{"*QVControlBar", "Wide"}, {"*QVPrintSize", "CustomPrintSize"}},
     .isTwoWay = true,
     .host = {},
     .accounts = japanesePaper},
    {.name = "version-5",
     .description = smallDescription("5"),
     .values = {{"*QVControlBar", "Wide"}},
     .isTwoWay = true},
    {.name = "version-6-notes",
     .description = english,
     .values = {{"*QVControlBar", "Wide"}, {"*QVSimulation", "Press"}, {"*QVCurveAdjust", "Soft"}},
     .isTwoWay = true,
     .host = {},
     .madeNotes = {{"*QVOutProfile", "AEFBBBF(x)(y)"},
                   {"*QVSimulation", "Press (2)"},
                   {"*QVControlBar", "EFBBBFwide (3)"}}},
    {.name = "version-6-unbalanced",
     .description = english,
     .values = {{"*QVControlBar", "Wide"}},
     .isTwoWay = true,
     .host = {},
     .madeNotes = {{"*QVOutProfile", "(((EFBBBFEFEFBBBFBBBF"},
                   {"*QVSimulation", R"(a) b\)"},
                   {"*QVControlBar", ""}}},
    {.name = "version-7-true",
     .description = smallDescription("7"),
     .values = {{"*QVControlBar", "True"}},
     .isTwoWay = true},
    // With two-way communication off, notes of colours are emptied; control bar and catalogue are missing.
    {.name = "two-way-off",
     .description = english,
     .values = {{"*QVControlBar", "Wide"}, {"*QVPrintSize", "A4"}, {"*QVScale", "5"}},
     .host = {},
     .accounts = {{"*QVPCMID", "4711"}},
     .madeNotes = {{"*QVOutProfile", "Coated 7"}}},
    {.name = "page-size-from-system",
     .description = english,
     .values = {{"*QVPrintSize", "A4"}, {"*QVScale", "250"}},
     .orientation = kPMReverseLandscape,
     .host = {"com.example.InDesign", "6.0", "indesign"},
     .isPageSizeFromSystem = true},
    {.name = "custom-size",
     .description = english,
     .values = {{"*QVPrintSize", "CustomPrintSize"}, {"*CustomPrintSize", "595.4 841.6"}}},
    {.name = "file-destination",
     .description = english,
     .values = {{"*QVDestination", "File"}, {"*QVMailboxName", "proofs"}},
     .host = {},
     .isPrinted = true},
    {.name = "side-lists",
     .description = english,
     .orientation = kPMLandscape,
     .host = {"com.example.InDesign", "5", "Layout\n%%EOF"},
     .mixedMedia = {{"*RangeProp1", "1-3|Card"}, {"RangeNum", "1\r\n%%EOF"}, {"", "lost"}},
     .padCovers = {{"PadCoverFront", "Yes"}},
     .slipSheets = {{"*SlipSheet_Tray", "\xE5\x8D\xB0"}},
     .coverPages = {{"CoverPage_Back", ""}},
     .watermark = "0,0,0,200,0,0,0,0,0,450,0,0,48,Helvetica,Draft"},
    {.name = "two-up", .description = paneHeader, .pagesASheet = 2},
    {.name = "empty", .description = paneHeader, .isTwoWay = true, .host = {"", "", ""}},
};

class GoldenTicket : public ::testing::TestWithParam<Situation> {};

TEST_P(GoldenTicket, IsTheReviewedOneAndItsDocumentRuns) {
    const Situation& situation = GetParam();
    ScopedMemorySystem system;
    system->host = situation.host;
    Pane pane = situation.sample.empty() ? Pane(situation.description)
                                         : Pane::OfFile(TORKA_SOURCE_DIR "/samples/" + situation.sample);
    prepare(pane, situation);
    PrintSettingsTicket dictionary(pane.session, pane.settings);
    ZANJobTicket ticket(&dictionary, pane.settings, cfString("ZAN.PSData"));
    EXPECT_EQ(pane.data->OutPostscriptData(ticket, pane.session,
                                           situation.isPrinted ? EmissionPurpose::printJob
                                                               : EmissionPurpose::keepSettings),
              0);
    const std::string text = shown(ticket);
    const std::string golden = TORKA_SOURCE_DIR "/tests/pane/golden/" + situation.name + ".txt";
    if (!std::filesystem::exists(golden) || readFile(golden) != text) {
        const std::filesystem::path folder = TORKA_BINARY_DIR "/golden";
        std::filesystem::create_directories(folder);
        std::ofstream(folder / (situation.name + ".txt"), std::ios::binary) << text;
        ADD_FAILURE() << "diff " << golden << " " << (folder / (situation.name + ".txt")).string();
    }

    // The printer receives the file destination only when a job is printed.
    ASSERT_EQ(pane.printer->sent.size(), situation.isPrinted ? 1U : 0U);
    if (situation.isPrinted) {
        EXPECT_EQ(utf8Text(pane.printer->sent[0].title), "Command_PSQVDestination");
        EXPECT_EQ(utf8Text(pane.printer->sent[0].command), "/Library/Caches/ZAN/proofs");
    }
    // The same input gives the same bytes.
    ZANJobTicket again(&dictionary, pane.settings, cfString("ZAN.PSData"));
    pane.data->OutPostscriptData(again, pane.session, EmissionPurpose::keepSettings);
    EXPECT_EQ(shown(again), text);

    const Result<Ticket> read = readTicket(CFDataGetBytes(ticket.Save()));
    ASSERT_TRUE(read) << read.Why().Line();
    const std::string document = pane.folder / "spliced.ps";
    const SpliceOutcome outcome = spliceFile(TORKA_SOURCE_DIR "/samples/brochure.ps", *read, document);
    ASSERT_EQ(outcome.status, SpliceStatus::ok) << outcome.errorText;
    EXPECT_EQ(runGhostscript("nullpage", {document}), "");
}

INSTANTIATE_TEST_SUITE_P(Situations, GoldenTicket, ::testing::ValuesIn(situations),
                         [](const ::testing::TestParamInfo<Situation>& each) {
                             std::string name = each.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

} // namespace

} // namespace torka::tests
