#include "PPDX/PPDObjects/Controls/PPDXJobNote.h"

#include <gtest/gtest.h>

#include "tests/model/ModelFixtures.h"

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

// The accessor, and the level from which on the word counts, in bit order.
TEST_F(JobNoteTest, FlagWordsAtEveryLevel) {
    using Accessor = bool (PPDXJobNote::*)() const;
    struct Row {
        const char* word;
        int level;
        Accessor accessor;
        bool limitsText;
    };
    const Row rows[] = {
        {"Alpha", 0, &PPDXJobNote::IsAlpha, true},
        {"Numeric", 0, &PPDXJobNote::IsNumeric, true},
        {"Decimal", 0, &PPDXJobNote::IsDecimal, true},
        {"Required", 0, &PPDXJobNote::IsRequired, false},
        {"Remembered", 0, &PPDXJobNote::Remember, false},
        {"Password", 0, &PPDXJobNote::IsPassword, false},
        {"AlwaysDisplay", 0, &PPDXJobNote::AlwaysDisplay, false},
        {"Resume", 0, &PPDXJobNote::Resume, false},
        {"Member", 0, &PPDXJobNote::IsMember, false},
        {"OnOfSwitch", 1, &PPDXJobNote::IsOnOffSwitch, false},
        {"LengthReq", 1, &PPDXJobNote::IsLengthReq, false},
        {"SecPrint", 1, &PPDXJobNote::IsSecPrint, false},
        {"Command", 2, nullptr, false},
        {"Space", 2, &PPDXJobNote::IsSpace, true},
        {"Negative", 2, &PPDXJobNote::IsNegative, true},
        {"Encrypt", 3, &PPDXJobNote::IsEncrypt, false},
        {"MultiSpace", 3, &PPDXJobNote::IsMultiSpace, true},
        {"MultiComma", 3, &PPDXJobNote::IsMultiComma, true},
        {"LCD", 3, &PPDXJobNote::IsLCD, false},
        {"Hyphen", 3, &PPDXJobNote::IsHyphen, false},
        {"TwoCharField", 3, &PPDXJobNote::IsTwoCharFields, false},
        {"NoComma", 3, &PPDXJobNote::IsNoComma, false},
        {"MinLength", 3, nullptr, false},
        {"UTF8", 3, &PPDXJobNote::IsUTF8, false},
        {"AESEncrypt", 3, &PPDXJobNote::IsAESEncrypt, false},
        {"PopupJN", 3, &PPDXJobNote::IsPopupJN, false},
    };
    std::uint32_t bit = 1;
    for (const Row& row : rows) {
        for (int level = 0; level <= 3; ++level) {
            JobNoteFlagReader reader(level);
            EXPECT_EQ(reader.Read(row.word), level >= row.level ? Result::taken : Result::aboveLevel)
                << row.word;
            EXPECT_EQ(reader.Flags(), level >= row.level ? bit : 0U) << row.word;
        }
        const PPDXJobNote note = Make({}, nullptr, bit);
        EXPECT_EQ(note.IsAnyText(), !row.limitsText) << row.word;
        for (const Row& other : rows) {
            if (other.accessor) {
                EXPECT_EQ((note.*other.accessor)(), &other == &row) << row.word << " " << other.word;
            }
        }
        bit <<= 1;
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
    struct Case {
        int level;
        bool isServer;
        const char* bytes; // of the text, as the setter leaves them
    };
    const CFStringRef text = cfString("\u65e5\u30bd"); // whose second byte in Shift-JIS is a backslash
    SetApplicationTextEncoding(kCFStringEncodingShiftJIS);
    const Case cases[] = {{0, false, "\x93\xfa\x83\x5c"},
                          {6, true, "\x93\xfa\x83\x5c"},
                          {6, false, "\u65e5\u30bd"},
                          {7, true, "\u65e5\u30bd"}};
    for (const Case& each : cases) {
        gQVUTF8Version = each.level;
        gDocumentServer = each.isServer;
        PPDXJobNote note = Make({}, "\x93\xfa"); // the description's own bytes
        EXPECT_EQ(valueOf(note), "\u65e5") << each.level;
        note.SetCurrentControlWithCFString(text);
        EXPECT_STREQ(note.GetNotes(), each.bytes) << each.level;
        EXPECT_TRUE(CFEqual(note.CopyCurrentControlValueString(), text)) << each.level;
        note.SetUTF8Notes(text);
        EXPECT_STREQ(note.GetNotes(), "\u65e5\u30bd");
        EXPECT_TRUE(CFEqual(note.CopyNotes(), text)) << each.level;
        note.SetCurrentControlWithCFString(nullptr);
        EXPECT_TRUE(CFEqual(note.CopyNotes(), text));
        note.ResetToDefaultValue();
        EXPECT_EQ(valueOf(note), "\u65e5");
    }
}

TEST_F(JobNoteTest, DefaultsSwitchAndSharedConverter) {
    const long before = PPDXJobNote::ConverterUses();
    {
        PPDXJobNote note = Make({}, nullptr);
        PPDXJobNote other = Make({}, "caf\u00e9");
        EXPECT_EQ(PPDXJobNote::ConverterUses(), before + 2);
        EXPECT_EQ(note.GetDefaultNotes(), nullptr);
        EXPECT_EQ(note.CFDefaultNotes(), nullptr);
        EXPECT_STREQ(note.GetNotes(), "");
        EXPECT_EQ(utf8Text(other.CFDefaultNotes()), "caf\u00e9");
        note.SetDefaultNotes("d");
        EXPECT_STREQ(note.GetNotes(), "");
        note.ResetToDefaultValue();
        EXPECT_STREQ(note.GetNotes(), "d");
        EXPECT_FALSE(note.GetNotesOnValue());
        note.SetNotesOnValue(true);
        EXPECT_TRUE(note.GetNotesOnValue());
        EXPECT_EQ(note.MaxLength(), 40);
        EXPECT_EQ(note.MinLength(), 2);
    }
    EXPECT_EQ(PPDXJobNote::ConverterUses(), before);
}

} // namespace
} // namespace torka
