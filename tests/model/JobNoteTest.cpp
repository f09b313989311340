// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"

#include <algorithm>

#include "tests/model/ModelFixtures.h"
#include "tests/support/TestSupport.h"

#include <regex>

namespace torka {
namespace {

using namespace tests;
using Result = JobNoteFlagReader::Result;

class JobNoteTest : public testing::Test {
protected:
    void TearDown() override {
        gQVUTF8Version = 0;
        gPopupJobNotesLangIsJapanese = gDocumentServer = false;
        SetApplicationTextEncoding(kCFStringEncodingUnknown);
    }

    static PPDXJobNote Make(std::string_view ps, const char* defaultText, std::uint32_t flags = 0) {
        const CString text(defaultText);
        return PPDXJobNote("*QVNote", cfString("Note"), nullptr,
                           reinterpret_cast<const unsigned char*>(ps.data()), static_cast<long>(ps.size()),
                           defaultText ? &text : nullptr, 40, flags, 2);
    }
};

// A flag's row in the document.
std::string documented(const JobNoteFlagRow& row) {
    const std::pair<NoteEffect, const char*> effects[] = {{NoteEffect::typing, "typing"},
                                                          {NoteEffect::finishedText, "finished text"},
                                                          {NoteEffect::field, "field"},
                                                          {NoteEffect::job, "job"},
                                                          {NoteEffect::none, "recorded only"}};
    std::string characters;
    for (const NoteCharacterKind& kind : noteCharacterKinds) {
        if ((row.admits & kind.kind) != 0) {
            characters += characters.empty() ? "" : " ";
            characters += kind.characters.size() > 1 || kind.kind == noteBlank
                              ? std::string(kind.name)
                              : "`" + std::string(kind.name) + "`";
        }
    }
    characters += row.unlessDecimal ? ", not with `Decimal`" : "";
    const auto* const effect =
        std::ranges::find(effects, row.effect, &std::pair<NoteEffect, const char*>::first);
    return "| `" + std::string(row.word) + "` | " + std::to_string(row.level) + " | " + effect->second +
           " | " + characters + " | " + std::string(row.meaning) + " |\n";
}

TEST_F(JobNoteTest, TheDocumentHasTheSameFlags) {
    const std::string page = readFile(TORKA_SOURCE_DIR "/docs/extended-ppd.md");
    std::string table = "| Word | Level | Takes effect | Characters | Meaning |\n|---|---|---|---|---|\n";
    std::string limiting;
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        table += documented(row);
        limiting += row.typing == NoteTyping::limits ? "`" + std::string(row.word) + "`" : "";
    }
    EXPECT_NE(page.find(table + "\n"), std::string::npos) << table;
    const std::size_t at = page.find("With none of ");
    const std::string sentence = page.substr(at, page.find(" a note accepts", at) - at);
    const std::regex word("`\\w+`");
    std::string named;
    for (std::sregex_iterator each(sentence.begin(), sentence.end(), word), end; each != end; ++each) {
        named += each->str();
    }
    EXPECT_EQ(named, limiting);
}

TEST_F(JobNoteTest, RulesThatFinishedTextsBreak) {
    constexpr std::uint32_t everyRule =
        jobNoteRequired | jobNoteLengthReq | jobNoteTwoCharField | jobNoteNoComma;
    // said: the words of all broken rules
    const std::tuple<std::uint32_t, int, const char*, const char*> cases[] = {
        {0, 0, "", ""},
        {0, 0, "123456", ""},
        {0, 0, "1234567", "must have at most 6 characters;"},
        {0, 0, "\u65e5\u65e5\u65e5\u65e5\u65e5\u65e5", ""},
        {0, 0, "\U0001F600\U0001F600\U0001F600\U0001F600", "must have at most 6 characters;"},
        {0, 4, "", ""},
        {0, 4, "123", "must have at least 4 characters;"},
        {0, 4, "1234", ""},
        {jobNoteMinLength, 0, "1", ""},
        {jobNoteMinLength, -3, "1", ""},
        {jobNoteRequired, 4, "", "must not be empty;"},
        {jobNoteRequired, 0, " ", ""},
        {jobNoteLengthReq, 0, "", ""},
        {jobNoteLengthReq, 0, "12345", "must have exactly 6 characters;"},
        {jobNoteLengthReq, 0, "1234567", "must have exactly 6 characters;"},
        {jobNoteLengthReq, 0, "123456", ""},
        {jobNoteNoComma, 0, "a,b", "must not hold a comma;"},
        {jobNoteNoComma | jobNoteMultiComma, 0, ",", "must not hold a comma;"},
        {jobNoteTwoCharField, 0, "01-05", ""},
        {jobNoteTwoCharField, 0, "5-1",
         "must be items of two letters or digits, or ranges of them, as in 01-05,07;"},
        {jobNoteTwoCharField, 0, "\u00e9\u00e9",
         "must be items of two letters or digits, or ranges of them, as in 01-05,07;"},
        {everyRule, 3, "1,",
         "must have exactly 6 characters;must have at least 3 characters;must not hold a comma;must be items "
         "of "
         "two letters or digits, or ranges of them, as in 01-05,07;"},
        {everyRule | jobNoteOnOffSwitch, 3, "1,", ""},
        {everyRule | jobNoteOnOffSwitch, 3, "", ""},
    };
    std::uint32_t broken = 0;
    for (const auto& [flags, minLength, text, said] : cases) {
        const PPDXJobNote note("*N", cfString("N"), nullptr, nullptr, 0, nullptr, 6, flags, minLength);
        std::string words;
        for (const BrokenNoteRule& rule : note.BrokenRules(cfString(text))) {
            words += rule.Words() + ";";
            broken |= rule.flag;
        }
        EXPECT_EQ(words, said) << flags << ' ' << text;
    }
    for (const JobNoteFlagRow& row : jobNoteFlags) {
        EXPECT_EQ((broken & row.flag) != 0, row.effect == NoteEffect::finishedText) << row.word;
    }
}

TEST_F(JobNoteTest, UnknownWordsAndMinimumLengths) {
    JobNoteFlagReader reader(3);
    for (const char* word : {"Alpha", "Numeric", "Foo", "alpha", ""}) {
        reader.Read(word);
    }
    EXPECT_EQ(reader.Flags(), 3U);
    EXPECT_EQ(reader.MinLength(), 0);
    const std::pair<const char*, int> suffixes[] = {{"", 0},     {"0", 0},   {"8", 8},   {"12", 12},
                                                    {"99", 99},  {"x", -1},  {"-1", -1}, {"1x", -3},
                                                    {"123", -2}, {"1x3", -3}};
    for (const auto& [suffix, expected] : suffixes) {
        for (const int level : {0, 3}) {
            JobNoteFlagReader each(level);
            const bool isBare = *suffix == '\0';
            EXPECT_EQ(each.Read(std::string("MinLength") + suffix), !isBare      ? Result::unknown
                                                                    : level == 3 ? Result::taken
                                                                                 : Result::aboveLevel);
            EXPECT_EQ(each.MinLength(), expected) << suffix;
            EXPECT_EQ(each.Flags(), isBare && level == 3 ? std::uint32_t{jobNoteMinLength} : 0U);
        }
    }
}

TEST_F(JobNoteTest, PostScriptCarriesTheTextTwice) {
    PPDXJobNote note = Make("(<*QVNote>) RMXnote\n", "AB");
    EXPECT_EQ(postScriptOf(note), "%%BeginFeature: *QVNote AB\n<4142> RMXnote\n%%EndFeature\n");
    note.SetNotes("a\r\nb");
    EXPECT_EQ(postScriptOf(note), "%%BeginFeature: *QVNote a  b\n<610D0A62> RMXnote\n%%EndFeature\n");
    note.SetNotes(nullptr);
    EXPECT_EQ(postScriptOf(note), "%%BeginFeature: *QVNote \n() RMXnote\n%%EndFeature\n");
    note.ResetToDefaultValue();
    EXPECT_STREQ(note.GetNotes(), "AB");
    EXPECT_EQ(postScriptOf(
                  *std::make_unique<PPDXJobNote>("*N", cfString("N"), nullptr, nullptr, 0, nullptr, 1, 0, 0)),
              "");
}

TEST_F(JobNoteTest, TextsKeepTheirCharactersInEveryEncoding) {
    // kept: the text's bytes after the setter
    const CFStringRef text = cfString("\u65e5\u30bd"); // ends in the byte of a backslash in Shift-JIS
    SetApplicationTextEncoding(kCFStringEncodingShiftJIS);
    const std::tuple<int, bool, const char*> cases[] = {{0, false, "\x93\xfa\x83\x5c"},
                                                        {6, true, "\x93\xfa\x83\x5c"},
                                                        {6, false, "\u65e5\u30bd"},
                                                        {7, true, "\u65e5\u30bd"}};
    for (const auto& [level, isServer, kept] : cases) {
        gQVUTF8Version = level;
        gDocumentServer = isServer;
        PPDXJobNote note = Make({}, "\x93\xfa"); // bytes in the description's encoding
        EXPECT_EQ(valueOf(note), "\u65e5") << level;
        note.SetCurrentControlWithCFString(text);
        EXPECT_STREQ(note.GetNotes(), kept) << level;
        EXPECT_TRUE(CFEqual(note.CopyCurrentControlValueString(), text)) << level;
        note.SetUTF8Notes(text);
        EXPECT_STREQ(note.GetNotes(), "\u65e5\u30bd");
        EXPECT_TRUE(CFEqual(note.CopyNotes(), text)) << level;
        note.SetCurrentControlWithCFString(nullptr);
        EXPECT_TRUE(CFEqual(note.CopyNotes(), text));
        note.ResetToDefaultValue();
        EXPECT_EQ(valueOf(note), "\u65e5");
    }
}

} // namespace
} // namespace torka
