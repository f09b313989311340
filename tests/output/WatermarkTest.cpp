// SPDX-License-Identifier: Apache-2.0
// Tests the record, the texts in their encodings, and the resources as Ghostscript prints them.

#include "PPDX/PPDObjects/Interface/ZANPPD.h"
#include "output/FeatureEmission.h"
#include "output/WatermarkEncoding.h"
#include "platform/memory/MemoryPrinting.h"
#include "tests/output/PlainSource.h"
#include "tests/output/WatermarkPages.h"
#include "tests/support/SmallPPD.h"

#include <algorithm>
#include <filesystem>
#include <limits>

namespace torka {
namespace {

using tests::runPython;

constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

TEST(Watermark, DefinitionIsReadFieldByField) {
    // The fields that are used, behind the definition.
    const std::pair<const char*, const char*> cases[] = {
        {"1,0,0,255,0,0,0,1,0,450,0,0,48,Helvetica,A, B", "1|0,0|255,0,0|1|450|48|Helvetica|A, B"},
        {"0,-20, 30,1,2,3,x,0,x,-1800,x,x,7,F,,", "0|-20,30|1,2,3|0|-1800|7|F|,"},
        {"", "0|0,0|0,0,0|0|0|0||"},
        {"-1,12", "1|12,0|0,0,0|0|0|0||"},
        {"0,0,0,0,0,0,0,1,0,0,0,0,9,Font", "0|0,0|0,0,0|1|0|9|Font|"},
        // Only "1" sets the flag.
        {"x,1x,--1,300,-5,99999999999999999999,0,01,0,4.5,0,0,+12pt, F ,t", "0|1,0|255,0,255|0|4|12| F |t"},
    };
    for (const auto& [definition, expected] : cases) {
        const ZANWatermark watermark(definition);
        std::ostringstream read;
        read << watermark.IsClear() << "|" << watermark.XOffset() << "," << watermark.YOffset() << "|"
             << watermark.Red() << "," << watermark.Green() << "," << watermark.Blue() << "|"
             << watermark.IsFirstPageOnly() << "|" << watermark.Angle() << "|" << watermark.FontSize() << "|"
             << watermark.FontName() << "|" << watermark.Text();
        EXPECT_EQ(read.str(), expected) << definition;
        EXPECT_EQ(watermark.Definition(), definition);
    }

    ZANWatermark wide(L"0,0,0,0,0,0,0,0,0,0,0,0,9,F,\u793E");
    EXPECT_EQ(wide.Text(), "\xE7\xA4\xBE");
    EXPECT_TRUE(wide.WideDefinition().ends_with(L"\u793E"));
    for (const auto& [value, expected] :
         {std::pair("True", true), {"true", false}, {"True", true}, {"", false}}) {
        wide.SetFirstPageOnly(value);
        EXPECT_EQ(wide.IsFirstPageOnly(), expected) << value;
    }
}

TEST(Watermark, FontNamesCannotLeaveTheirPlace) {
    const std::string longest(117, 'n');
    for (const std::string& name :
         {std::string("Helvetica-Bold"), std::string("1.5e!#$&'*+,-.:;=?@^_`|~"), longest}) {
        EXPECT_EQ(postScriptFontName(" " + name + "\t"), name);
    }
    for (const std::string& name : {std::string(), longest + "n", std::string("caf\xC3\xA9")}) {
        EXPECT_EQ(postScriptFontName(name), "Helvetica") << name;
    }
    for (const char refused : std::string_view(" \n\0\x7F\\()<>[]{}/%", 15)) {
        EXPECT_EQ(postScriptFontName(std::string("x") + refused + "y"), "Helvetica") << refused;
    }
}

// Compares the encoding for each language and font with Python's codecs.
TEST(Watermark, TextsAreHexadecimalInTheFontsEncoding) {
    struct Case {
        const char *language, *font, *codec, *text;
    };
    const Case cases[] = {
        {"English", "Helvetica", "latin-1", "Entwurf \u00c4\u00ff~"},
        {"Japanese", "Helvetica", "latin-1", "caf\u00e9"},
        {"Chinese", "AdobeSongStd-Light", "gb18030", "Draft \u673a\u5bc6 \u20ac \U0001F600"},
        {"Chinese", "X-H", "gb18030", "\u793e"},
        {"Russian", "X", "utf-8", "\u041f\u0440\u043e\u0435\u043a\u0442 \U0001F600"},
        {"Turkish", "X-V", "utf-8", "\u015e\u011e\u0131\u0130"},
        {"Polish", "X", "utf-8", "\u0141\u00f3d\u017a"},
        {"Czech", "X", "utf-8", "\u010d\u0159"},
        {"Japanese", "Ryumin-Light-90ms-RKSJ-H", "cp932", "a\\~\u793e\u5916\u79d8 \uff71\u2460\u2116"},
        {"Japanese", "Ryumin-Light-90ms-RKSJ-V", "cp932", "\u793e\u5916\u79d8"},
        {"Japanese", "Ryumin-Light-EUC-H", "euc_jp", "a~\u793e\u5916\u79d8 \uff71\u2026\u7199"},
        {"Japanese", "Ryumin-Light-UniJIS-UTF8-H", "utf-8", "a\\\u793e"},
        {"Japanese", "Ryumin-Light-UniJIS-UTF16-V", "utf-16-be", "a\\\u793e\U00020B9F"},
        {"Japanese", "Ryumin-Light-UniJIS-UCS2-H", "utf-16-be", "a\\\u793e"},
        {"Japanese", "Ryumin-Light-UniJIS-UTF32-H", "utf-32-be", "a\\\u793e\U00020B9F"},
    };
    std::vector<std::string> asked;
    for (const Case& each : cases) {
        asked.insert(asked.end(), {each.text, each.codec});
    }
    std::istringstream answers(runPython(R"(
import sys
for text, codec in zip(sys.argv[1::2], sys.argv[2::2]):
    print(text.encode(codec).hex().upper()))",
                                         asked));
    for (const Case& each : cases) {
        ZANWatermark watermark((std::string("0,0,0,0,0,0,0,0,0,0,0,0,9,F,") + each.text).c_str());
        std::string expected;
        answers >> expected;
        EXPECT_EQ(watermark.GetWMTextInHex(each.language, each.font), expected)
            << each.font << " " << each.text;
        // Computed once.
        EXPECT_EQ(watermark.GetWMTextInHex("English", "Helvetica"), expected);
    }
    // JIS is EUC with seven bits, and ASCII in its full-width forms.
    const std::string jis = watermarkBytes("A \u793e\u5916", WatermarkFontKind::japanese, "Ryumin-Light-H");
    EXPECT_EQ(
        runPython(
            "import sys; b = sys.argv[1].encode('euc_jp'); print(bytes(c & 127 for c in b).decode(), end='')",
            {"\uff21\u3000\u793e\u5916"}),
        jis);
}

TEST(Watermark, WhatAnEncodingLacksIsAQuestionMark) {
    const std::tuple<WatermarkFontKind, const char*, const char*, std::string_view> cases[] = {
        {WatermarkFontKind::latin, "", "\u20ac1 \u2013\u0080\u793e\U0001F600 x", "\2001 ???? x"},
        {WatermarkFontKind::latin, "", "a\377\303b", "a??b"},
        {WatermarkFontKind::latinExtended, "", "a\377b\355\240\200", "a?b???"},
        {WatermarkFontKind::chinese, "", "a\377b", "a?b"},
        {WatermarkFontKind::japanese, "X-RKSJ-H", "\u0416\u0e01\U0001F600\u00a9\u00a0", "\x84\x47??? "},
        {WatermarkFontKind::japanese, "X-90pv-RKSJ-H", "\\\u0e01\u00a9", "\x80?\xFD"},
        {WatermarkFontKind::japanese, "X-EUC-H", "\u2460\u0e01", "??"},
        {WatermarkFontKind::japanese, "X-H", "\u2460\u0e01\uff71", "!)!)!)"},
        {WatermarkFontKind::japanese, "X-UCS2-H", "\U0001F600", std::string_view("\0?", 2)},
    };
    for (const auto& [kind, font, text, expected] : cases) {
        EXPECT_EQ(watermarkBytes(text, kind, font), expected) << font << text;
    }
}

struct Template {
    const char *language, *font;
    bool isClear;
};

// The six resources. The composite fonts are missing, so that their substitutes are printed.
constexpr Template templates[] = {
    {"Japanese", "Ryumin-Light-90ms-RKSJ-H", false},
    {"Japanese", "Ryumin-Light-90ms-RKSJ-H", true},
    {"Chinese", "AdobeSongStd-Light", false},
    {"Polish", "Times-Roman", false},
    {"English", "Helvetica", false},
    {"English", "Helvetica", true},
};

struct Turn {
    std::uint16_t orientation;
    double x, y, axis; // for an offset of (60, 30) and an angle of 20 degrees
};

constexpr Turn turns[] = {
    {kPMPortrait, 60, 30, 20},
    {kPMLandscape, -30, 60, 110},
    {kPMReversePortrait, 60, 30, 20},
    {kPMReverseLandscape, 30, -60, 110}, // -70 degrees
};

struct Controller {
    const char* code;
    double x, y; // the page's centre
};

// No controller; one that does not give its page's box; one that gives it.
constexpr Controller controllers[] = {
    {"", tests::paperWidth / 2.0, tests::paperHeight / 2.0},
    {"userdict /TorkaRMdict 4 dict put\n", tests::paperWidth / 2.0, tests::paperHeight / 2.0},
    {"userdict /TorkaRMdict 4 dict dup /ZANPageBox {100 100 400 400} put put\n", 250, 250},
};

std::string resource(const Template& kind, std::uint16_t orientation, bool isFirstPageOnly, const char* text,
                     const char* angle = "200", const char* offsets = "60,30", int size = 24) {
    const std::string definition = std::string(kind.isClear ? "1," : "0,") + offsets + ",204,0,102,0," +
                                   (isFirstPageOnly ? "1" : "0") + ",0," + angle + ",0,0," +
                                   std::to_string(size) + "," + kind.font + "," + text;
    return ZANWatermark(definition.c_str()).Resource(kind.language, orientation);
}

// Each template is printed in one run, with each job within save and restore.
class WatermarkTemplate : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(All, WatermarkTemplate, testing::Range(std::size_t{0}, std::size(templates)));

TEST_P(WatermarkTemplate, IsFoundWhereTheDefinitionPutsIt) {
    std::string program;
    std::size_t number = 0; // every second job has its watermark on the first page only
    for (const Controller& controller : controllers) {
        ++number;
        for (const Turn& turn : turns) {
            program += tests::job(controller.code + resource(templates[GetParam()], turn.orientation,
                                                             number++ % 2 == 0, "HHHHHHHH"));
        }
    }
    const std::vector<tests::Ink> pages = tests::printPages(program, {tests::coarse});
    ASSERT_EQ(pages.size(), std::size(controllers) * std::size(turns) * 2);
    const tests::Ink* page = pages.data();
    number = 0;
    for (const Controller& controller : controllers) {
        ++number;
        for (const Turn& turn : turns) {
            for (const bool hasInk : {true, number++ % 2 != 0}) {
                SCOPED_TRACE(testing::Message() << controller.code << turn.orientation);
                if (!hasInk || templates[GetParam()].isClear) {
                    EXPECT_EQ(page->count, 0U);
                } else {
                    EXPECT_GT(page->count, 75U);
                    EXPECT_NEAR(page->x, controller.x + turn.x, 2);
                    EXPECT_NEAR(page->y, controller.y + turn.y, 2);
                    EXPECT_NEAR(page->axis, turn.axis, 2);
                    EXPECT_EQ(page->colour, std::tuple(204, 0, 102));
                }
                ++page;
            }
        }
    }
}

// Checks the points at which other interpreters may fail: the frame, and ASCII bytes only.
TEST_P(WatermarkTemplate, HasItsFrame) {
    const std::string text = resource(templates[GetParam()], kPMLandscape, true, "x");
    EXPECT_TRUE(text.starts_with("%%ZAN Begin Watermark resource \n globaldict /landscapeDoc true put \n "
                                 "globaldict /invLandscapeDoc false put \n"));
    EXPECT_TRUE(text.ends_with(" %%ZAN End Watermark resource \n"));
    EXPECT_TRUE(std::ranges::all_of(text, [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }));
    EXPECT_LT(text.size(), 4300U);

    Template clear = templates[GetParam()];
    clear.isClear = true;
    EXPECT_EQ(resource(clear, kPMPortrait, true, "x").find("(Clear)") != std::string::npos,
              clear.language == std::string_view("Japanese") ||
                  clear.language == std::string_view("English"));
}

// The clear ink has its own plate, and the watermark marks no other plate.
TEST(WatermarkPages, ClearInkIsAPlateOfItsOwn) {
    const tests::TemporaryFolder folder;
    const Template clear{"English", "Helvetica", true};
    tests::runOnPaper(
        tests::job(resource(clear, kPMPortrait, true, "HHHHHHHH"), "showpage\n"),
        {"-sDEVICE=tiffsep", "-sCompression=none", "-sOutputFile=" + (folder / "p.tif").string()});
    // Ink is dark in a plate. Prints the amount of ink and its centre from the upper left.
    std::istringstream found(runPython(R"(
import struct, sys
for plate in ('Cyan', 'Magenta', 'Yellow', 'Black', 'Clear'):
    d = open('%s/p(%s).tif' % (sys.argv[1], plate), 'rb').read()
    at, = struct.unpack_from('<I', d, 4)
    tags = {}
    for i in range(struct.unpack_from('<H', d, at)[0]):
        tag, kind, count = struct.unpack_from('<HHI', d, at + 2 + 12 * i)
        form = {3: 'H', 4: 'I'}.get(kind, 'B')
        place = at + 10 + 12 * i
        if count * struct.calcsize(form) > 4:
            place, = struct.unpack_from('<I', d, place)
        tags[tag] = struct.unpack_from('<%d%s' % (count, form), d, place)
    p = b''.join(d[o:o + c] for o, c in zip(tags[273], tags[279]))
    ink = [divmod(i, tags[256][0]) for i, v in enumerate(p) if v < 255]
    print(len(ink), *(sum(each) // max(len(ink), 1) for each in list(zip(*ink)) or ((), ()))))",
                                       {folder.Path()}));
    for (const bool isClear : {false, false, false, false, true}) {
        std::size_t count = 1;
        double x = 0;
        double y = 0;
        found >> count >> y >> x;
        EXPECT_EQ(count > 500, isClear);
        EXPECT_EQ(count == 0, !isClear);
        EXPECT_NEAR(x, isClear ? tests::paperWidth / 2.0 + 60 : 0, 2);
        EXPECT_NEAR(y, isClear ? tests::paperHeight / 2.0 - 30 : 0, 2);
    }
}

// The text runs in the page's reading direction: its heavy beginning lies before the centre.
TEST(WatermarkPages, TextRunsTheWayThePageIsRead) {
    // The direction is in degrees.
    const std::tuple<std::uint16_t, const char*, double> cases[] = {{kPMPortrait, "0", 0},
                                                                    {kPMPortrait, "1350", 135},
                                                                    {kPMLandscape, "0", 90},
                                                                    {kPMLandscape, "-900", 0},
                                                                    {kPMReverseLandscape, "0", -90}};
    std::string program;
    for (const auto& [orientation, angle, direction] : cases) {
        program += tests::job(resource(templates[4], orientation, false, "MMM          .", angle, "0,0"),
                              "showpage\n");
    }
    const std::vector<tests::Ink> pages = tests::printPages(program);
    ASSERT_EQ(pages.size(), std::size(cases));
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const double direction = std::get<double>(cases[i]) * M_PI / 180;
        const double x = pages[i].x - tests::paperWidth / 2.0;
        const double y = pages[i].y - tests::paperHeight / 2.0;
        EXPECT_LT(x * std::cos(direction) + y * std::sin(direction), -15) << i;
        EXPECT_NEAR(y * std::cos(direction) - x * std::sin(direction), 0, 2) << i;
    }
}

// Each page has one watermark, even if the document redefines showpage, and a job's watermark never appears
// twice.
TEST(WatermarkPages, EveryWayToEndAPageCounts) {
    struct Case {
        const char *before, *after, *pages, *inked; // "+" for a page with ink
    };
    const std::string first = resource(templates[4], kPMPortrait, true, "HHHHHHHH");
    const std::string all = resource(templates[4], kPMPortrait, false, "HHHHHHHH");
    const Case cases[] = {
        {"/page {showpage} bind def\n", "", "page save page restore\n", "+-++"},
        {"/page {showpage} bind def\n", "", "showpage page showpage\n", "+--+++"},
        {"userdict /showpage {1 pop systemdict /showpage get exec} put\n", "", "showpage showpage\n", "+-++"},
        {"<</EndPage {exch pop 0 eq}>> setpagedevice\n", "", "showpage showpage\n", "+-++"},
        {"", "<</PageSize [400 500]>> setpagedevice\n", "showpage showpage\n", "+-++"},
        {"true setglobal\n", "", "showpage showpage\n", "+-++"},
        {"", "true setglobal mark 1 2\n", "showpage showpage\n", "+-++"},
        // A document may replace EndPage, and a prolog may put several pages on one sheet.
        {"", "<</EndPage {exch pop 2 ne}>> setpagedevice\n", "showpage showpage\n", "+-++"},
        {"/on true def userdict /showpage {/on on not def on {systemdict /showpage get exec} if} put\n", "",
         "/page {1 setgray clippath fill showpage} def page page page page\n", "+-++"},
        {"/n 0 def <</EndPage {exch pop 0 eq {/n n 1 add def n 2 mod 0 eq} {false} ifelse}>> setpagedevice\n",
         "", "/page {1 setgray clippath fill showpage} def page page page page\n", "+-++"},
    };
    std::string program;
    for (const Case& each : cases) {
        const std::string pages = std::string(each.after) + each.pages;
        program += tests::job(each.before + first, pages) + tests::job(each.before + all, pages);
    }
    const std::vector<tests::Ink> inks = tests::printPages(program, {tests::coarse});
    std::size_t page = 0;
    for (const Case& each : cases) {
        for (const char inked : std::string_view(each.inked)) {
            ASSERT_LT(page, inks.size()) << each.before;
            EXPECT_EQ(inks[page++].count > 75, inked == '+') << each.before << each.after << page;
        }
    }
    EXPECT_EQ(page, inks.size());
    // A resource that a job contains twice.
    EXPECT_EQ(tests::printPages(tests::job(all + first)).at(1).count, 0U);
}

// The print system's own filter puts several pages on a sheet. Each page here paints all of its place white,
// so that a watermark drawn too early loses ink.
TEST(WatermarkPages, SeveralPagesOnASheetHaveOneWatermark) {
    const std::string pstops = "/usr/lib/cups/filter/pstops";
    if (!std::filesystem::exists(pstops)) {
        GTEST_SKIP() << "no " << pstops;
    }
    const tests::TemporaryFolder folder;
    const std::string description = folder.Write("sheets.ppd", tests::smallPPD + tests::onlySheet("400 500"));
    std::string document = "%!PS-Adobe-3.0\n%%Pages: 5\n%%EndComments\n";
    for (const char* page : {"1", "2", "3", "4", "5"}) {
        document +=
            std::string("%%Page: ") + page + " " + page + "\n1 setgray 0 0 400 500 rectfill showpage\n";
    }
    document = folder.Write("in.ps", document + "%%EOF\n");
    const std::string opening = "%%BeginSetup\n";
    const std::string texts[] = {resource(templates[4], kPMPortrait, true, "HHHHHHHH", "200", "0,0"),
                                 resource(templates[4], kPMPortrait, false, "HHHHHHHH", "200", "0,0")};
    std::string program = tests::job(texts[0], "showpage\n");
    std::vector<bool> inked{true}; // by page
    for (const auto& [perSheet, sheets] : {std::pair{"1", 5}, {"2", 3}, {"4", 2}}) {
        const tests::CommandResult result =
            tests::runCommand({"env", "PPD=" + description, pstops, "1", "user", "title", "1",
                               std::string("number-up=") + perSheet, document});
        ASSERT_EQ(result.status, 0) << result.errors;
        const std::size_t setup = result.output.find(opening);
        ASSERT_NE(setup, std::string::npos);
        for (const bool isFirstPageOnly : {true, false}) {
            program += tests::job(
                "",
                std::string(result.output).insert(setup + opening.size(), texts[isFirstPageOnly ? 0 : 1]));
            for (int sheet = 0; sheet < sheets; ++sheet) {
                inked.push_back(sheet == 0 || !isFirstPageOnly);
            }
        }
    }
    const std::vector<tests::Ink> inks = tests::printPages(program, {tests::coarse});
    ASSERT_EQ(inks.size(), inked.size());
    EXPECT_GT(inks[0].count, 75U);
    for (std::size_t i = 0; i < inks.size(); ++i) {
        EXPECT_EQ(inks[i].count, inked[i] ? inks[0].count : 0) << i;
    }
}

// With arbitrary numbers, names and texts the job still runs, and its stacks are unchanged.
TEST(WatermarkPages, NothingStopsAJob) {
    std::string program = "userdict /TorkaRMdict 4 dict put TorkaRMdict /ZANPageBox "
                          "{1 2 [ 4 dict begin 5 dict begin undefinedname} put\n";
    for (const Template& kind : templates) {
        for (const char* text : {"", "A", "\x01\xFF(\\", "\u0416\u793E\U0001F600\u20AC"}) {
            for (const int size : {0, -12, 24, static_cast<int>(most)}) {
                const char* offsets = size == 24 ? "0,0" : "2147483647,-2147483648";
                program += tests::job(
                    "7 " + resource(kind, kPMReverseLandscape, false, text, "9999999", offsets, size),
                    "TorkaRMdict /ZANPageBox known {showpage} if userdict /TorkaRMdict undef "
                    "showpage\ncount 1 ne countdictstack 3 ne or $error /newerror get or "
                    "{(not as they were) =} if\n");
            }
        }
    }
    tests::runOnPaper(program, {"-sDEVICE=nullpage", "-sstdout=%stderr"});
}

// With fonts for the script, each template uses them and shows its text.
TEST(WatermarkPages, CompositeFontsShowTheText) {
    const tests::TemporaryFolder folder;
    // A font with Cyrillic letters stands in for the CIDFonts of a controller.
    std::string map;
    for (const auto& [name, ordering] : {std::pair("Ryumin-Light", "Japan1"),
                                         {"Playing-Light", "Japan1"},
                                         {"AdobeSongStd-Light", "GB1"},
                                         {"AdobeHeitiStd-Regular", "GB1"},
                                         {"MyriadPro-Regular", "Japan1"}}) {
        map += std::string("/") + name + " << /FileType /TrueType /Path " +
               "(/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf) /SubfontID 0 /CSI [(" + ordering +
               ") 4] >> ;\n";
    }
    folder.Write("cidfmap", map);
    // Stands in for a controller's CMap: the CMap of another collection under the expected name.
    const std::string extended =
        "/CIDInit /ProcSet findresource begin 12 dict begin begincmap /UniJIS-UTF8-H usecmap\n"
        "/CMapName /ZANMyriad-Latin-Extended-A-UTF8 def CMapName currentdict endcmap\n"
        "/CMap defineresource pop end end\n";
    const std::string noComposition = "userdict /resourcestatus {dup /Font eq {pop pop false} "
                                      "{systemdict /resourcestatus get exec} ifelse} put\n";
    const std::tuple<const char*, const char*, const char*, std::string> cases[] = {
        {"Japanese", "Ryumin-Light-90ms-RKSJ-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-EUC-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-UniJIS-UTF8-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-UniJIS-UTF16-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-UniJIS-UTF32-H", "Ryumin-Light", ""},
        {"Japanese", "Ryumin-Light-UniJIS-UCS2-H", "Ryumin-Light", ""},
        {"Japanese", "Playing-Light-90ms-RKSJ-H", "Playing-Light", noComposition},
        {"Japanese", "Not-There-90ms-RKSJ-H", "Ryumin-Light", ""},
        {"Chinese", "AdobeSongStd-Light", "AdobeSongStd-Light", ""},
        {"Chinese", "NotThere", "AdobeSongStd-Light", ""},
        {"Chinese", "My-AdobeHeitiStd-Regular", "AdobeHeitiStd-Regular", ""},
        {"Russian", "Times-Roman", "MyriadPro-Regular", extended},
    };
    std::string program;
    std::string expectedFonts;
    for (const auto& [language, font, font0, before] : cases) {
        program += tests::job(before + resource({language, font, false}, kPMPortrait, false,
                                                "\u0428\u0428\u0428\u0428\u0428\u0428", "0", "0,0"),
                              "tellFont showpage\n");
        expectedFonts += font0 + std::string("\n");
    }
    program += "/Ryumin-Light-UniJIS-UTF8-H findfont 24 scalefont setfont 100 242 moveto\n"
               "<D0A8D0A8D0A8D0A8D0A8D0A8> show showpage\n";
    const std::string include = "-I" + folder.Path().string();
    const std::string telling = "/tellFont {ZANWMFont /FDepVector get 0 get /CIDFontName get =} def\n";
    EXPECT_EQ(tests::runOnPaper(telling + program, {include, "-sDEVICE=nullpage"}), expectedFonts);
    const std::vector<tests::Ink> pages = tests::printPages("/tellFont {} def\n" + program, {include});
    ASSERT_EQ(pages.size(), std::size(cases) + 1);
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_NEAR(pages[i].x, tests::paperWidth / 2.0, 2) << std::get<1>(cases[i]);
        EXPECT_GT(pages.back().count, 300U);
        EXPECT_NEAR(static_cast<double>(pages[i].count), static_cast<double>(pages.back().count), 60)
            << std::get<1>(cases[i]);
    }
}

// Without the controller's font, the letters of the four languages are printed in Helvetica.
TEST(WatermarkPages, ExtendedLettersWithoutTheirFont) {
    const std::string letters =
        "\u0104\u0105\u0106\u0107\u0118\u0119\u0141\u0142\u0143\u0144\u00d3\u00f3\u015a\u015b"
        "\u0179\u017a\u017b\u017c\u010c\u010d\u010e\u010f\u011a\u011b\u0147\u0148\u0158\u0159"
        "\u0160\u0161\u0164\u0165\u016e\u016f\u017d\u017e\u011e\u011f\u0130\u0131\u015e\u015f"
        "\u0401\u0451\u0410\u0415\u0416\u042f\u0430\u0435\u0436\u044f\u2116\u20ac-\u793e";
    const std::string program =
        tests::job(resource({"Russian", "X", false}, kPMPortrait, false, letters.c_str(), "0", "0,0", 4),
                   "showpage showpage ZANWMString {ZANWMFont /Encoding get exch get =} forall\n");
    // Names of the Adobe Glyph List, except for letters whose Unicode names differ.
    const std::string expected = runPython(R"(
import sys, unicodedata
special = {'\u20ac': 'Euro', '\u2116': 'afii61352', '-': 'hyphen', '\u793e': 'question', '\u0131': 'dotlessi',
           '\u0130': 'Idotaccent', '\u0141': 'Lslash', '\u0142': 'lslash', '\u0401': 'afii10023', '\u0451': 'afii10071',
           '\u0410': 'afii10017', '\u0415': 'afii10022', '\u0416': 'afii10024', '\u042f': 'afii10049',
           '\u0430': 'afii10065', '\u0435': 'afii10070', '\u0436': 'afii10072', '\u044f': 'afii10097'}
accents = {'OGONEK': 'ogonek', 'ACUTE': 'acute', 'CARON': 'caron', 'BREVE': 'breve', 'CEDILLA': 'cedilla',
           'RING ABOVE': 'ring', 'DOT ABOVE': 'dotaccent'}
for c in sys.argv[1]:
    if c in special:
        print(special[c])
    else:
        name = unicodedata.name(c)
        letter = name.split(' WITH ')[0][-1]
        print((letter if 'CAPITAL' in name else letter.lower()) + accents[name.split(' WITH ')[1]])
)",
                                           {letters});
    EXPECT_EQ(tests::runOnPaper(program, {"-sDEVICE=nullpage"}), expected);
}

// The golden ticket "side-lists" shows its place.
TEST(WatermarkEmission, AnEntryUnlessTooLong) {
    const tests::ScopedMemorySystem system;
    const tests::CapturingLog log;
    ZANPPD description(FSRef{TORKA_SOURCE_DIR "/samples/torka-production-ja.ppd"}, 3, nullptr);
    const auto entries = [&description](ZANWatermark* watermark) {
        const auto settings = std::make_shared<MemoryPrintSettings>();
        const auto session = std::make_shared<MemorySession>();
        PrintSettingsTicket dictionary(session, settings);
        ZANJobTicket ticket(&dictionary, settings, cfString("ZAN.PSData"));
        tests::PlainSource source(description, settings);
        source.watermark = watermark;
        source.orientation = kPMLandscape;
        FeatureEmission(source, ticket, session, EmissionPurpose::keepSettings).OutPostscriptData();
        return ticket.Entries().size();
    };
    const std::string fields = "1,5,6,0,0,0,0,0,0,0,0,0,9,Ryumin-Light-90ms-RKSJ-H,";
    const std::size_t without = entries(nullptr);
    // The longest text that fits, and one letter more. A letter takes two digits.
    const std::size_t room = 5119 - ZANWatermark(fields.c_str()).Resource("Japanese", kPMLandscape).size();
    for (const std::size_t length : {room / 2, room / 2 + 1}) {
        ZANWatermark longOne((fields + std::string(length, 'x')).c_str());
        EXPECT_EQ(entries(&longOne), without + (length == room / 2 ? 1 : 0));
    }
    EXPECT_EQ(std::ranges::count_if(
                  log.Lines(), [](const std::string& line) { return line.find("watermark") != line.npos; }),
              1);
}

} // namespace
} // namespace torka
