// SPDX-License-Identifier: Apache-2.0
#include "TextConverter.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <string>

namespace torka {
namespace {

// A description that declares its language and this encoding.
struct Described : PPDX {
    explicit Described(const char* encoding) {
        PPDStream language(std::string_view(" English")), name{std::string_view(encoding)};
        ParsePSKeywords(language, "*LanguageVersion");
        ParsePSKeywords(name, "*LanguageEncoding");
    }
    std::string Converted(std::string_view text) { return utf8Text(Converter()->ConvertToCFString(text)); }
};

std::string dehexed(std::string_view text) {
    std::string out(text.size(), '\0');
    out.resize(TextConverter::DehexBufferFill(text, out.data()));
    return out;
}

TEST(TextConverter, HexadecimalSubstrings) {
    struct Case {
        std::string_view in, out;
    };
    using namespace std::string_view_literals;
    for (const Case& each : {Case{"a<4142>b<63>", "aABbc"},
                             {"<4a4B>", "JK"},
                             {"<>x", "x"},
                             {"< 41\t4 2\n>", "AB"},
                             {"<41>b<4>c<42>", "Ab<4>c<42>"},
                             {"<4g><41>", "<4g><41>"},
                             {"a<41", "a<41"},
                             {"a>b", "a>b"},
                             {"<<41>>", "<<41>>"},
                             {"<41\0>"sv, "<41\0>"sv},
                             {"<00>", "\0"sv},
                             {"", ""}}) {
        EXPECT_EQ(dehexed(each.in), each.out) << each.in;
    }
}

// The platform's test compares the encodings with Python's codecs.
TEST(TextConverter, ReadsTextsInTheirEncodings) {
    struct Case {
        const char *name, *text, *converted;
    };
    for (const Case& each : {Case{"ISOLatin1", "A\xA4<e4>", "A\u00a4\u00e4"},
                             {"ISOLatin2", "A\xA3<b1>", "A\u0141\u0105"},
                             {"ISOLatin5", "A\xD0<fe>", "A\u011e\u015f"},
                             {"JIS83-RKSJ", "A\x83\x5C\x88\xF3<8dfc 41>\xB1", "A\u30bd\u5370\u5237A\uff71"},
                             {"MacStandard", "A\x8E<a0>", "A\u00e9\u2020"},
                             {"WindowsANSI", "A\x80<99>", "A\u20ac\u2122"},
                             {"UTF-8", "A\xC3\xA9<f09f9880>", "A\u00e9\U0001f600"},
                             {"Unheard-of", "A\xC3\xA9<e697a5>", "A\u00e9\u65e5"}}) {
        Described description(each.name);
        EXPECT_EQ(description.Converter()->ValidConverter(), std::string(each.name) != "Unheard-of");
        EXPECT_EQ(description.Converted(each.text), each.converted) << each.name;
    }
}

TEST(TextConverter, NeverFailsOutright) {
    Described japanese("JIS83-RKSJ");
    // With a lead byte that lacks its second byte, each two bytes count as one unit, and an odd last byte is
    // left out.
    EXPECT_EQ(japanese.Converter()->ConvertToCFString("x\x81", 256)->units, u"\x8178");
    EXPECT_EQ(japanese.Converter()->ConvertToCFString("xyz\x81 ", 5)->units, u"\x7978\x817A");
    EXPECT_EQ(Described("UTF-8").Converted("a\xFF"), "a\uFFFD");
    Described latin("ISOLatin1");
    EXPECT_EQ(latin.Converted("caf<E9>"), "caf\u00e9");
    EXPECT_EQ(utf8Text(latin.Converter()->ConvertToCFString("abcdef", 3)), "abc");
    EXPECT_EQ(utf8Text(latin.Converter()->ConvertToCFString(nullptr, 3)), "");

    tests::ScopedMemorySystem system;
    system->narrowEncoding = kCFStringEncodingMacRoman;
    char narrow[32];
    EXPECT_TRUE(TextConverter::CFStringToCstring(cfString("caf\u00e9"), narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "caf\x8E");
    EXPECT_FALSE(TextConverter::CFStringToCstring(cfString("\u65e5"), narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "Translation Error");
    EXPECT_FALSE(TextConverter::CFStringToCstring(cfString("too long"), narrow, 6));
    EXPECT_STREQ(narrow, "Trans");
    Described roman("ISOLatin1"); // created while the system's encoding is Mac Roman
    CString text("caf<E9>");
    EXPECT_TRUE(roman.Converter()->ppdStringConvert(text));
    EXPECT_STREQ(text, "caf\x8E");
    EXPECT_TRUE(roman.Converter()->Convert("caf\xE9", narrow, sizeof narrow));
    EXPECT_STREQ(narrow, "caf\x8E");
}

} // namespace
} // namespace torka
