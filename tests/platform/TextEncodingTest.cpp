// SPDX-License-Identifier: Apache-2.0
#include "platform/TextEncoding.h"
#include "platform/CoreFoundation.h"
#include "tests/support/TestSupport.h"

#include <gtest/gtest.h>
#include <map>
#include <sstream>

namespace torka {
namespace {

using namespace std::string_literals;

// What Python's codec decodes of each sequence of one byte or of two, as the script below prints it.
std::map<std::string, std::u16string> readTable(std::istream& in, bool twoBytes) {
    std::map<std::string, std::u16string> table;
    std::size_t count = 0;
    in >> count;
    for (unsigned code = 0, point = 0; table.size() < count && in >> code >> point;) {
        const std::string low(1, static_cast<char>(code));
        const std::string bytes = twoBytes ? static_cast<char>(code >> 8) + low : low;
        table[bytes] = utf16FromWide(std::wstring(1, static_cast<wchar_t>(point)));
    }
    return table;
}

TEST(TextEncoding, AgreesWithPythonsCodecs) {
    struct Case {
        CFStringEncoding encoding;
        const char* codec;
        bool twoBytes;
        std::size_t least; // minimum number of sequences, so that an empty table is noticed
    };
    const Case cases[] = {
        {kCFStringEncodingMacRoman, "mac_roman", false, 256},
        {kCFStringEncodingMacCentralEurRoman, "mac_latin2", false, 256},
        {kCFStringEncodingISOLatin1, "latin_1", false, 256},
        {kCFStringEncodingISOLatin2, "iso8859_2", false, 256},
        {kCFStringEncodingISOLatin5, "iso8859_9", false, 256},
        {kCFStringEncodingWindowsLatin1, "cp1252", false, 251},
        {kCFStringEncodingASCII, "ascii", false, 128},
        {kCFStringEncodingShiftJIS, "shift_jis", false, 191}, // ASCII and half-width katakana
        {kCFStringEncodingShiftJIS, "shift_jis", true, 6879},
        {kCFStringEncodingGB_18030_2000, "gbk", true, 20000},
    };
    std::vector<std::string> asked;
    for (const Case& item : cases) {
        asked.insert(asked.end(), {item.codec, item.twoBytes ? "2" : "1"});
    }
    std::istringstream tables(tests::runPython(R"(
import sys
for codec, size in zip(sys.argv[1::2], map(int, sys.argv[2::2])):
    table = []
    for n in range(0x8140, 0x10000) if size == 2 else range(256):
        try:
            text = n.to_bytes(size, 'big').decode(codec)
        except UnicodeDecodeError:
            continue
        if len(text) == 1:
            table.append(f'{n} {ord(text)}')
    print(len(table), *table, sep='\n'))",
                                               asked));
    for (const Case& item : cases) {
        const auto table = readTable(tables, item.twoBytes);
        EXPECT_GE(table.size(), item.least) << item.codec;
        std::size_t different = 0;
        for (const auto& [bytes, units] : table) {
            if (decodeText(bytes, item.encoding) != units || encodeText(units, item.encoding) != bytes) {
                ++different;
                ADD_FAILURE() << item.codec << " " << ::testing::PrintToString(bytes);
                ASSERT_LT(different, 10U);
            }
        }
        // In the platform's Windows Latin 1, bytes without a letter are controls.
        const bool refuses = !item.twoBytes && item.encoding != kCFStringEncodingWindowsLatin1;
        for (unsigned code = 0; refuses && code < 0x100; ++code) {
            const std::string byte(1, static_cast<char>(code));
            EXPECT_EQ(decodeText(byte, item.encoding).has_value(), table.contains(byte))
                << item.codec << code;
        }
    }
}

TEST(TextEncoding, MacJapaneseHasItsOwnBytes) {
    const std::pair<std::string, std::u16string> cases[] = {
        {"\\", u"\u00A5"},
        {"\x80", u"\\"},
        {"\xA0", u"\u00A0"},
        {"\xFD", u"\u00A9"},
        {"\xFE", u"\u2122"},
        {"\x83\x5C\x83\x80\x81\xA0",
         u"\u30BD\u30E0\u25A1"}, // as second bytes, these have no meaning of their own
        {"a\xB1\x88\xC0\x90\xB9", u"a\uFF71\u5B89\u8056"},
        {"\x87\x40", u"\u2460"},
    };
    for (const auto& [bytes, units] : cases) {
        EXPECT_EQ(decodeText(bytes, kCFStringEncodingMacJapanese), units);
        EXPECT_EQ(encodeText(units, kCFStringEncodingMacJapanese), bytes);
    }
    EXPECT_EQ(decodeText("\xFF", kCFStringEncodingMacJapanese), u"\u2026");
    EXPECT_EQ(encodeText(u"\u2026", kCFStringEncodingMacJapanese), "\x81\x63");
}

// Like Python's codec it writes the yen sign and the overline as the bytes that JIS X 0201 gives them.
TEST(TextEncoding, ShiftJisHasNoByteOfMacJapanese) {
    for (const char16_t* const missing : {u"\u00A0", u"\u00A9", u"\u2122", u"\u20AC"}) {
        EXPECT_EQ(encodeText(missing, kCFStringEncodingShiftJIS), std::nullopt);
    }
    EXPECT_EQ(encodeText(u"\u00A5\u203E\u2026", kCFStringEncodingShiftJIS), "\\~\x81\x63");
}

TEST(TextEncoding, TellsWhatItCannotRead) {
    const std::tuple<CFStringEncoding, std::string, std::u16string> cases[] = {
        {kCFStringEncodingUTF8, "a\xFF\xC3", u"a\uFFFD\uFFFD"},
        {kCFStringEncodingUTF8, "\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"}, // UTF-8 forbids surrogates
        {kCFStringEncodingASCII, "a\x80", u"a\uFFFD"},
        {kCFStringEncodingUTF16, "a\0b"s, u"a\uFFFD"},
        {kCFStringEncodingShiftJIS, "\x83", u"\uFFFD"},
        {kCFStringEncodingShiftJIS, "\x85\x41z",
         u"\uFFFD"
         u"Az"},
        {kCFStringEncodingGB_18030_2000, "\x81", u"\uFFFD"},
        {kCFStringEncodingNonLossyASCII, "\\u12 \xE9\\", u"\uFFFDu12 \uFFFD\uFFFD"},
        {kCFStringEncodingNonLossyASCII, "\\400",
         u"\uFFFD"
         u"400"},
    };
    for (const auto& [encoding, bytes, lossy] : cases) {
        EXPECT_FALSE(decodeText(bytes, encoding)) << bytes;
        EXPECT_EQ(decodeTextLossy(bytes, encoding), lossy) << bytes;
    }
    for (const CFStringEncoding unknown : {kCFStringEncodingUnknown, CFStringEncoding{7}}) {
        EXPECT_FALSE(isKnownEncoding(unknown));
        EXPECT_FALSE(decodeText("a", unknown) || decodeTextLossy("a", unknown) || encodeText(u"a", unknown));
    }
    for (const CFStringEncoding narrow : {kCFStringEncodingISOLatin1, kCFStringEncodingASCII,
                                          kCFStringEncodingShiftJIS, kCFStringEncodingMacRoman}) {
        EXPECT_FALSE(encodeText(u"a\u0E01", narrow)) << narrow;
    }
    EXPECT_FALSE(encodeText(u"a\xD800z", kCFStringEncodingUTF8));
    EXPECT_EQ(utf8FromUtf16(u"a\xD800z"), "a\xEF\xBF\xBDz");
}

TEST(TextEncoding, NonLossyAsciiHoldsAnyText) {
    const std::u16string text = u"a\\b\n\u00E9\u007F\u0100\u4E2D\U0001F600";
    const auto bytes = encodeText(text, kCFStringEncodingNonLossyASCII);
    EXPECT_EQ(bytes, "a\\\\b\n\\351\x7F\\u0100\\u4e2d\\ud83d\\ude00");
    EXPECT_EQ(decodeText(*bytes, kCFStringEncodingNonLossyASCII), text);
    EXPECT_EQ(decodeText("\\U4E2D", kCFStringEncodingNonLossyASCII), u"\u4E2D");
}

TEST(TextEncoding, Utf16FollowsItsMark) {
    for (const std::string& bytes : {"\xFE\xFF\0a\x4E\x2D"s, "\xFF\xFE"
                                                             "a\0\x2D\x4E"s}) {
        EXPECT_EQ(decodeText(bytes, kCFStringEncodingUTF16), u"a\u4E2D");
    }
    EXPECT_EQ(decodeText(*encodeText(u"\u4E2Da", kCFStringEncodingUTF16), kCFStringEncodingUTF16),
              u"\u4E2Da");
}

TEST(TextEncoding, WideTextKeepsWhatIsACharacter) {
    const std::wstring wide = L"a\u4E2D\U0001F600";
    EXPECT_EQ(wideFromUtf8(utf8FromWide(wide)), wide);
    EXPECT_EQ(utf16FromWide(std::wstring{0x110000, 0xD800, L'b'}), u"\uFFFD\uFFFDb");
    EXPECT_EQ(wideFromUtf16(u"\xDC00\xD83D\xDE00\xD83D"), L"\uFFFD\U0001F600\uFFFD");
}

} // namespace
} // namespace torka
