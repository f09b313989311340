// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/ModelState.h"
#include "pane/panel/CustomizePaneController.h"
#include "pane/presentation/FieldSearch.h"
#include "pane/presentation/FieldTexts.h"
#include "pane/presentation/GaugeTexts.h"
#include "pane/presentation/NoteRules.h"
#include "pane/presentation/NumberScale.h"
#include "pane/presentation/PageList.h"
#include "pane/presentation/PresetChoice.h"
#include "pane/presentation/TwoWayNotice.h"
#include "pane/presentation/WatermarkEditing.h"
#include "tests/presentation/PresentationFixture.h"

#include <gmock/gmock.h>

namespace torka::tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

struct Sample : testing::Test {
    SpokenPane spoken;
    PaneEditor& editor = spoken.editor;
    const PaneTexts& texts = spoken.texts;

    std::string Shown(const char* keyword) {
        return shownValue(texts, spoken.Field(keyword), PaneEditor::Value(spoken.Control(keyword)));
    }
};

TEST_F(Sample, ValuesInAPersonsWords) {
    const std::pair<const char*, std::pair<const char*, const char*>> cases[] = {
        {"*QVDuplex", {"LongEdge", "Turn on Long Edge"}},
        {"*QVMirror", {"True", "On"}},
        {"*QVScale", {"250", "250 %"}},
        {"*QVGutter", {"125", "12.5 mm"}},      // tenths
        {"*QVBookletCreep", {"15", "0.15 mm"}}, // hundredths
        {"*QVGamma", {"1.2", "1.2"}},
        {"*CustomPrintSize", {"595.275574 841.889771", "210.0 × 297.0 mm"}},
        {"*QVAccountId", {"123456", "123456"}},
        {"*QVUserPassword", {"geheim", "••••••••"}},
        {"*QVMarks", {"", "None chosen"}},
    };
    for (const auto& [keyword, value] : cases) {
        editor.SetValue(keyword, value.first);
        EXPECT_EQ(Shown(keyword), value.second) << keyword;
    }
    EXPECT_EQ(shownReset(texts, spoken.Field("*QVDuplex")), "Back to Off");
    EXPECT_EQ(shownReset(texts, spoken.Field("*Notes3")), "Back to –");
    EXPECT_EQ(shownPlace(texts, spoken.Field("*QVFinisherUnit")), "Installed Options");
    EXPECT_EQ(whyLocked(texts, spoken.Control("*PageSize")),
              "Chosen on the print dialog's own pages; follows them.");
    EXPECT_EQ(whyLocked(texts, spoken.Control("*QVDuplex")), "");
}

TEST_F(Sample, SaysWhatForbids) {
    editor.SetValue("*MediaType", "Labels");
    const PPDXControl& duplex = spoken.Control("*QVDuplex");
    EXPECT_EQ(whyForbidden(texts, duplex, {"LongEdge", "Turn on Long Edge"}),
              "Turn on Long Edge is not available with “Media Type: Labels”.");
    EXPECT_EQ(whyForbidden(texts, duplex, {"None", "Off"}), "");
    EXPECT_THAT(whyForbidden(texts, duplex),
                AllOf(StartsWith("Turn on Long Edge is not available"), HasSubstr("\nTurn on Short Edge")));
    editor.SetValue("*QVFolderUnit", "False");
    EXPECT_TRUE(checkBoxState(texts, spoken.Control("*QVFoldPrintInside"), true).canChange)
        << "out of a conflict there is a way";
    EXPECT_THAT(whySizeIsUnused(texts), HasSubstr("“Print Size: Custom Size”"));
    editor.SetValue("*QVPrintSize", "CustomPrintSize");
    EXPECT_EQ(whySizeIsUnused(texts), "");
}

TEST_F(Sample, ListsPagesAndWhatDiffers) {
    std::vector<std::string> identifiers;
    for (const PageEntry& entry : pageEntries(texts, true, true)) {
        identifiers.push_back(entry.identifier);
    }
    EXPECT_THAT(identifiers, ElementsAre("quickAccess", "QVJobPage", "QVLayoutPage", "QVFinishingPage",
                                         "QVColorPage", "QVNotesPage", "watermarks", "installed", "summary"));
    EXPECT_EQ(editor.Catalog().Find("*QVMMInUse"), nullptr) << "the pane shows it never";
    EXPECT_EQ(editor.Catalog().Find("*QVServiceCounter"), nullptr) << "in a hidden group";
    EXPECT_EQ(pageOf(texts, spoken.Field("*QVStaple")), "QVFinishingPage");
    EXPECT_EQ(pageOf(texts, spoken.Field("*QVFinisherUnit")), "installed");
    EXPECT_EQ(summaryTitle(texts), "Summary");
    EXPECT_EQ(undoTip(texts), "Undo");
    editor.SetValue("*MediaType", "Labels");
    editor.SetValue("*QVUserPassword", "geheim");
    const auto rows = summaryRows(texts);
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].value + '|' + rows[0].defaultValue, "Labels|Plain");
    EXPECT_EQ(rows[1].name + '|' + rows[1].value, "User Password|••••••••");
    EXPECT_EQ(summaryTitle(texts), "Summary (2)");
    PanePage page;
    for (const std::size_t fields : {40U, 2U, 3U}) {
        page.groups.push_back({"G", "G", std::vector<PaneField>(fields)});
    }
    EXPECT_THAT(openGroups(page), ElementsAre(true, false, false));
    std::swap(page.groups[0], page.groups[2]);
    EXPECT_THAT(openGroups(page), ElementsAre(true, true, false));
}

TEST_F(Sample, FindsByNameKeywordAndChoice) {
    FieldSearch search(texts);
    const auto first = [&](const char* query) {
        const auto matches = search.Matches(query);
        return matches.empty() ? "" : matches[0].field->keyword + " " + matches[0].choice;
    };
    EXPECT_THAT(search.Matches("  "), IsEmpty());
    EXPECT_EQ(search.Matches("*").size(), editor.Catalog().FieldCount());

    SearchResults results = search.Results("ivory");
    ASSERT_EQ(results.sections.size(), 1U);
    EXPECT_THAT(results.sections[0].heading, AllOf(HasSubstr(" › "), testing::EndsWith(" – Found: Ivory")));
    results = search.Results("*");
    std::size_t shown = 0;
    for (const auto& section : results.sections) {
        shown += section.fields.size();
    }
    EXPECT_EQ(shown, 40U);
    EXPECT_THAT(results.more, StartsWith(std::to_string(editor.Catalog().FieldCount() - 40) + " more"));
    // Names, keywords, choices, words that stand in no name, and the names of pages.
    for (const auto& [query, keyword] : {std::pair{"print BOTH sides", "*QVDuplex "},
                                         {"qvgamma", "*QVGamma "},
                                         {"media ivory", "*QVMediaColor Ivory"},
                                         {"no such thing", ""},
                                         {"two-sided", "*QVDuplex "},
                                         {"Duplex", "*QVDuplex "},
                                         {"copies", "*Collate "},
                                         {"stapling", "*QVStaple "},
                                         {"paper size", "*PageSize "}}) {
        EXPECT_EQ(first(query), keyword) << query;
    }
    FieldSearch withPages(texts, true);
    const auto pagesOf = [&](const char* query) {
        std::string titles;
        for (const auto& page : withPages.Results(query).pages) {
            titles += page.title + ";";
        }
        return titles;
    };
    EXPECT_EQ(pagesOf("stamp"), "Watermarks;");
    EXPECT_EQ(pagesOf("WATERMARK"), "Watermarks;");
    EXPECT_EQ(pagesOf(editor.Catalog().Pages().front().name.c_str()),
              editor.Catalog().Pages().front().name + ";");
    EXPECT_EQ(withPages.Results("stamp").nothingFound, "");
    EXPECT_EQ(search.Results("%1 <b>").nothingFound, "No setting matches “%1 <b>”.");
}

TEST(Sentences, NamesMayHoldAnything) {
    SpokenPane spoken(paneHeader + "*%ZANFlags *Odd: Dynamic\n*%ZANGroup *Odd: Group\n"
                                   "*OpenUI *Odd/%1 <b>&x</b>: PickOne\n*DefaultOdd: A\n"
                                   "*Odd A/%2: \"\"\n*Odd B/<i>: \"\"\n*CloseUI: *Odd\n");
    EXPECT_EQ(shownSetting(spoken.texts, {"*Odd", "A"}), "“%1 <b>&x</b>: %2”");
    EXPECT_EQ(shownSetting(spoken.texts, {"*None", "%1"}), "“*None: %1”");
    FieldSearch search(spoken.texts);
    EXPECT_THAT(search.Matches("late"), IsEmpty());
    bool remade = false;
    spoken.editor.AddListener([&](const PaneChange& change) { remade = remade || change.catalogRemade; });
    spoken.pane->model->SetupControl(
        spoken.pane->model->GetGroups()->Find("Group", true),
        std::make_unique<PPDXJobNote>("*Late", cfString("Late"), nullptr, nullptr, 0, nullptr, 10, 0U, 0),
        true);
    spoken.editor.Refresh();
    EXPECT_EQ(search.Matches("late").size(), 1U) << "the fields are others now";
    EXPECT_TRUE(remade && spoken.editor.SetValue("*Late", "text"));
}

TEST(Sentences, UnitsAndDecimals) {
    PaneField field;
    const auto shown = [&](const char* unit) {
        field.unit = unit;
        const ShownUnit result = shownUnit(field);
        return std::to_string(result.factor).substr(0, 5) + ' ' + std::to_string(result.decimals) + ' ' +
               result.name;
    };
    EXPECT_EQ(shown("1/100 mm"), "0.010 2 mm");
    EXPECT_EQ(shown("1/10 pt"), "0.100 1 pt");
    EXPECT_EQ(shown("%"), "1.000 0 %");
    EXPECT_EQ(shown("1/7 mm"), "1.000 0 1/7 mm");
    EXPECT_THAT((std::vector{decimalsFor(1.0F), decimalsFor(0.1F), decimalsFor(0.25F), decimalsFor(0.05F),
                             decimalsFor(0.125F), decimalsFor(0.0F)}),
                ElementsAre(0, 1, 2, 2, 3, 0));
}

TEST_F(Sample, RangesAsSlidersAndSizesInTheCountrysUnit) {
    const NumberScale scale(spoken.Field("*QVScale")); // 25 to 400
    EXPECT_EQ(scale.SliderMaximum(), 375);
    EXPECT_EQ(scale.AtSlider(scale.SliderPlace(250)), 250);
    EXPECT_EQ(scale.ValueText(1000), "400");
    EXPECT_EQ(scale.ValueText(-5), "25");
    const NumberScale gutter(spoken.Field("*QVGutter")); // tenths, five at a time
    EXPECT_DOUBLE_EQ(gutter.ShownStep(), 0.5);
    EXPECT_EQ(gutter.Decimals(), 1);
    const SizeScale inches(false);
    EXPECT_EQ(inches.ValueText(8.5, 11), "612.000000 792.000000");
    const SizeScale metric(true);
    EXPECT_DOUBLE_EQ(metric.Least(283.46), 100.0) << "99.9 mm would be less than the bound";
    EXPECT_DOUBLE_EQ(metric.Largest(283.46), 99.9) << "100.0 mm would be more than the bound";
}

// The widgets' tests have the other sentences.
TEST(Sentences, GaugesAndTwoWayCommunication) {
    SpokenPane spoken(paneHeader);
    const auto told = [&](const auto& gauge) { return gaugeSentence(spoken.texts, shownGauge(gauge)); };
    EXPECT_EQ(told(TrayGauge{"Tray 2", "", 0, false}), "Tray 2: 0 %, needs attention");
    EXPECT_EQ(told(TrayGauge{"Bypass", "A5", std::nullopt, false}), "Bypass – A5: level not known");
    EXPECT_EQ(told(SupplyGauge{"Waste", "", 95, true}), "Waste: 95 %, needs attention");
    EXPECT_EQ(shownGauge(SupplyGauge{"Ärger", "", 1, false}).Initial(), "Ä");
    EXPECT_EQ(shownGauge(SupplyGauge{}).Initial(), "");
    EXPECT_EQ(twoWayNotice(spoken.texts, twoWayState(false, true)).spoken, "Two-way communication: Off");
}

TEST(Sentences, RulesOfNotes) {
    // Flags, their rules, a text, the counter beside it, and what is wrong with it.
    const std::array<const char*, 5> cases[] = {
        {"6|Numeric|Required|LengthReq",
         "Allowed: digits. The text must not be empty, must have exactly 6 characters.", "", "required",
         "“Note name” must not be empty."},
        {"20|MinLength3|NoComma",
         "The text must have at most 20 characters, must have at least 3 characters, must not hold a comma.",
         ",", "1 / 20", "“Note name” must have at least 3 characters, must not hold a comma."},
        {"4|UTF8", "The text must have at most 4 characters.", "ab\xF0\x9F\x98\x80", "4 / 4", ""},
        {"4|UTF8|MinLengthx", "The text must have at most 4 characters.", "äbcde", "5 / 4",
         "“Note name” must have at most 4 characters."},
        {"9|LCD", "Allowed: digits, letters, -, ,, ., _. The text must have at most 9 characters.", "a",
         "1 / 9", ""},
        {"9|Decimal|MultiSpace|Negative",
         "Allowed: digits, -, ,, .. The text must have at most 9 characters.", "-1", "2 / 9", ""},
        {"5|OnOfSwitch|Required", "", "", "0 / 5", ""},
    };
    for (const auto& [flags, rules, typed, shown, broken] : cases) {
        SpokenPane spoken(paneHeader + jobNote("Note", flags));
        const auto& note = static_cast<const PPDXJobNote&>(spoken.Control("*Note"));
        EXPECT_EQ(noteRules(spoken.texts, note), rules);
        const CFStringRef text = cfString(typed);
        const NoteCounter counter = noteCounter(spoken.texts, note, text);
        EXPECT_EQ(counter.shown, shown) << flags;
        EXPECT_EQ(counter.broken, broken) << flags;
        EXPECT_EQ(noteCounter(spoken.texts, note, text, true).broken, "") << "nobody can change a locked one";
    }
}

TEST(Sentences, FontsAndPapersOfWatermarks) {
    for (const char* name : {"", "a b", "a,b", "a%b", "(a", "a\\b", "\xC3\xA4"}) {
        EXPECT_FALSE(isFontName(name)) << name;
    }
    EXPECT_FALSE(isFontName(std::string(118, 'a')));
    const auto look = [](const char* name) {
        const FontLook found = fontLook(name);
        return found.family + "|" + std::to_string(static_cast<int>(found.kind)) +
               (found.isBold ? " bold" : "") + (found.isItalic ? " italic" : "");
    };
    EXPECT_EQ(look("Helvetica-BoldOblique"), "Helvetica|0 bold italic");
    EXPECT_EQ(look("times-Roman"), "times|1");
    EXPECT_EQ(look("Courier"), "Courier|2");
    const auto printer = std::make_shared<MemoryPrinter>();
    printer->papers = {{"A4", "A4", 595, 842}, {"Wall", "Wall", 1e6, 10}};
    EXPECT_EQ(printerPaper(printer, "A4")->height, 842);
    EXPECT_FALSE(printerPaper(printer, "Wall"));
    EXPECT_FALSE(printerPaper(nullptr, "A4"));
}

// Typed one after the other. Under ISO Latin 1 a note with the Euro sign would leave empty.
TEST(Sentences, ATypedTextIsTakenOrTheSentenceSaysWhatIsAllowed) {
    SpokenPane spoken(paneHeader + jobNote("Any", "9") + jobNote("Pages", "8|Numeric|Hyphen") +
                      jobNote("Pin", "8|Numeric|Password"));
    CustomizePaneController controller(spoken.pane->model.get());
    const auto version = gQVUTF8Version;
    gQVUTF8Version = 4;
    SetApplicationTextEncoding(kCFStringEncodingISOLatin1);
    const std::string latin = "\nThis printer’s texts hold the characters of ISO Latin 1 only.";
    for (const auto& [keyword, typed, held, refusal] : {
             std::tuple{"*Any", "5 €ü😀€", "5 ü", "Not allowed here: €😀"},
             {"*Any", "5 euros ü", "5 euros ü", ""},
             {"*Any", "5 euros ü.", "5 euros ü", "The text stays as it was: it has at most 9 characters."},
             {"*Pages", "1-3", "1-3", ""},
             {"*Pages", "1-3x", "1-3", "Not allowed here: x\nAllowed: digits, -."},
             {"*Pages", "1-3€", "1-3", "Not allowed here: €"},
             {"*Pin", "1x", "1", "A typed character is not allowed here.\nAllowed: digits."},
         }) {
        auto& note = static_cast<PPDXJobNote&>(spoken.Control(keyword));
        const TypedNote taken =
            takeTypedText(spoken.texts, controller, controller.TagOfJobNote(keyword), note, cfString(typed));
        EXPECT_EQ(utf8Text(taken.shown), held) << typed;
        EXPECT_EQ(utf8Text(note.CopyNotes()), held) << typed;
        EXPECT_EQ(taken.refusal,
                  std::string_view(typed).find("€") != std::string_view::npos ? refusal + latin : refusal);
    }
    auto& note = static_cast<PPDXJobNote&>(spoken.Control("*Pages"));
    const std::uint32_t tag = controller.TagOfJobNote("*Pages");
    takeTypedText(spoken.texts, controller, tag, note, cfString("1"));
    note.SetCurrentControlWithCFString(cfString("7-9")); // as an undo does
    EXPECT_EQ(utf8Text(takeTypedText(spoken.texts, controller, tag, note, cfString("123456789")).shown),
              "7-9");
    SetApplicationTextEncoding(kCFStringEncodingUTF8);
    gQVUTF8Version = version;
}

TEST(Sentences, AWatermarkNamesWhatItsFontCannotPrint) {
    for (const auto& [language, font, text, shown, missing] : {
             std::tuple{"English", "Helvetica", "Büro 5 €?", "Büro 5 €?", ""},
             {"English", "Helvetica", "日本 Ω日", "?? ??", "日本Ω"},
             {"Russian", "Helvetica", "Проект", "Проект", ""},
             {"Japanese", "Ryumin-Light-EUC-H", "日本？€", "日本？?", "€"},
             {"Chinese", "AdobeSongStd-Light", "草稿𠀀", "草稿?", "𠀀"},
         }) {
        SpokenPane spoken(paneHeader + "*LanguageVersion: " + language + "\n");
        WatermarkFields fields;
        fields.fontName = font;
        fields.text = text;
        const PrintedWatermark printed = printedWatermark(spoken.texts, fields);
        EXPECT_EQ(printed.shown, shown);
        EXPECT_EQ(printed.missing, *missing == '\0' ? "" : std::string("This font cannot print: ") + missing);
    }
    for (const auto& [word, text] : {std::pair{"Ébauche", "Ébauche"}, {"下書き", "Draft"}}) {
        SpokenPane spoken(paneHeader + "*LanguageVersion: English\n");
        spoken.texts.language.text = [said = word](const PaneWord&) { return said; };
        const WatermarkFields fields = newWatermark(spoken.texts);
        EXPECT_EQ(fields.text, text) << "a new one can be printed";
        EXPECT_EQ(fields.angle, 450) << "tenths of a degree";
    }
}

TEST(Sentences, NamesOfPresets) {
    SpokenPane spoken(paneHeader);
    const auto state = [&](const char* renamed, const char* typed, const char* name) {
        const PresetNameState told = presetNameState(spoken.texts, renamed, {"One", "Two"}, typed, name);
        return std::string(told.button->english) + (told.canAccept ? "+" : "-") + told.hint;
    };
    EXPECT_THAT(state("", "New", "New"), StartsWith("&Save+Passwords"));
    EXPECT_THAT(state("", "New~", "New~"), StartsWith("&Save+Passwords"));
    EXPECT_THAT(state("", "New\x7F", "New"), StartsWith("&Save-A name has"));
    EXPECT_EQ(state("", "", ""), "&Save-Passwords and protected notes are not kept in presets.");
    EXPECT_EQ(state("", "One ", "One"), "&Replace+There is a preset of this name. Replace it?");
    EXPECT_THAT(state("", "  ", ""), StartsWith("&Save-A name has"));
    EXPECT_THAT(state("", "a\tb", "a\tb"), StartsWith("&Save-A name has"));
    EXPECT_EQ(state("Two", "One", "One"), "&Rename-Another preset has this name.");
    EXPECT_EQ(state("Two", "Two", "Two"), "&Rename-");
    EXPECT_EQ(state("Two", "Three", "Three"), "&Rename+");
}

} // namespace
} // namespace torka::tests
