// SPDX-License-Identifier: Apache-2.0
#include "TextConverter.h"
#include "PPDX/PPDObjects/Interface/PPDX.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>

#include <sstream>
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

// Converts texts that Python encoded, as bytes and in hexadecimal, back to their characters.
TEST(TextConverter, ReadsWhatPythonEncodes) {
    struct Case {
        const char *name, *codec;
    };
    for (const Case& each : {Case{"ISOLatin1", "latin_1"},
                             {"ISOLatin2", "iso8859_2"},
                             {"ISOLatin5", "iso8859_9"},
                             {"JIS83-RKSJ", "shift_jis"},
                             {"MacStandard", "mac_roman"},
                             {"WindowsANSI", "cp1252"},
                             {"UTF-8", "utf_8"},
                             {"Unheard-of", "utf_8"}}) {
        const std::string output = tests::runPython(R"(
import random, sys
random.seed(7)
codec = sys.argv[1]
def decoded(raw):
    try: return raw.decode(codec)
    except UnicodeError: return ''
if codec == 'shift_jis': raws = [bytes([a, b]) for a in (*range(0x83, 0x98), 0xe0, 0xea) for b in range(0x40, 0xfd)]
elif codec == 'utf_8': raws = [chr(n).encode() for n in (*range(0xa0, 0x2500, 3), 0x1f600)]
else: raws = [bytes([b]) for b in range(0xa0, 0x100)]
letters = [letter for letter in map(decoded, raws) if letter]
for i in range(60):
    text = ''.join(random.choice([random.choice(letters), 'A', ' b']) for _ in range(40)) if i else ''.join(letters)
    raw = text.encode(codec)
    half = len(text) // 2
    mixed = text[:half].encode(codec).hex() + '3c' + text[half:].encode(codec).hex().encode().hex() + '3e'
    for each in (raw.hex(), mixed):
        print(each, text.encode('utf_8').hex())
)",
                                                    {each.codec});
        std::istringstream lines(output);
        Described description(each.name);
        const bool isKnown = std::string(each.name) != "Unheard-of";
        EXPECT_EQ(description.Converter()->ValidConverter(), isKnown);
        std::string encoded, expected;
        int count = 0;
        while (lines >> encoded >> expected) {
            ASSERT_EQ(description.Converted(dehexed("<" + encoded + ">")), dehexed("<" + expected + ">"))
                << each.name;
            ++count;
        }
        EXPECT_EQ(count, 120) << each.name;
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
