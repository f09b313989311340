// SPDX-License-Identifier: Apache-2.0
#include "platform/CoreFoundation.h"
#include "platform/TextEncoding.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace torka {
namespace {

TEST(CFString, ReadsNumbers) {
    constexpr double largest = std::numeric_limits<double>::max();
    const std::tuple<std::string, std::int32_t, double> cases[] = {
        {"", 0, 0.0},
        {" \t\xE3\x80\x80-12x", -12, -12.0},
        {"+7", 7, 7.0},
        {"+-7", 0, 0.0},
        {"2147483647", 2147483647, 2147483647.0},
        {"2147483648", 2147483647, 2147483648.0},
        {"-2147483649", -2147483647 - 1, -2147483649.0},
        {"99999999999999999999", 2147483647, 1e20},
        {"1.5e3", 1, 1500.0},
        {"1,5", 1, 1.0},
        {".5", 0, 0.5},
        {"1e", 1, 1.0},
        {"inf", 0, 0.0},
        {"nan", 0, 0.0},
        {"0x10", 0, 0.0},
        {"1e999", 1, largest},
        {"-1e+999", -1, -largest},
        {"1e-999", 1, 0.0},
        {"0." + std::string(400, '0') + "1", 0, 0.0},
        {"1" + std::string(400, '0'), 2147483647, largest},
        {"1" + std::string(400, '0') + "e-5", 2147483647, largest},
        {"0." + std::string(400, '0') + "1e5", 0, 0.0},
    };
    for (const auto& [text, integer, real] : cases) {
        EXPECT_EQ(CFStringGetIntValue(cfString(text)), integer) << text;
        EXPECT_EQ(CFStringGetDoubleValue(cfString(text)), real) << text;
    }
}

TEST(CFString, ComparesByUnitsOrFolded) {
    const auto compare = [](const char* left, const char* right, unsigned flags) {
        return CFStringCompare(cfString(left), cfString(right), flags);
    };
    EXPECT_LT(compare("a", "b", 0), 0);
    EXPECT_GT(compare("a", "B", 0), 0);
    EXPECT_LT(compare("a", "B", kCFCompareCaseInsensitive), 0);
    EXPECT_EQ(compare("\xC3\x84pfel", "\xC3\xA4PFEL", kCFCompareCaseInsensitive), 0);
    EXPECT_EQ(compare("\xF0\x90\x90\x80", "\xF0\x90\x90\xA8", kCFCompareCaseInsensitive),
              0); // Deseret letters
    EXPECT_LT(compare("ab", "ABC", kCFCompareCaseInsensitive), 0);
    EXPECT_LT(CFStringCompare(nullptr, cfString("")), 0);
    EXPECT_EQ(CFStringCompare(nullptr, nullptr), 0);
}

TEST(CFString, CopiesOnlyWhatFits) {
    const CFStringRef text = cfString("\xE4\xB8\xAD\xF0\x9F\x98\x80"); // one unit and a pair; seven bytes
    EXPECT_EQ(CFStringGetLength(text), 3);
    EXPECT_EQ(CFStringGetCharacterAtIndex(text, 0), u'\x4E2D');
    EXPECT_EQ(CFStringGetCharacterAtIndex(text, 3), 0);
    EXPECT_EQ(CFStringGetCharacterAtIndex(text, -1), 0);
    char buffer[8] = "xxxxxxx";
    EXPECT_FALSE(CFStringGetCString(text, buffer, 7, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "");
    EXPECT_TRUE(CFStringGetCString(text, buffer, 8, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer, "\xE4\xB8\xAD\xF0\x9F\x98\x80");
    EXPECT_FALSE(CFStringGetCString(text, buffer, 8, kCFStringEncodingISOLatin1));
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(utf8Text(CFStringCreateWithSubstring(text, 1, 2)), "\xF0\x9F\x98\x80");
    EXPECT_FALSE(CFStringCreateWithSubstring(text, 2, 2));
    EXPECT_FALSE(CFStringCreateWithSubstring(text, 1, std::numeric_limits<CFIndex>::max()));
    EXPECT_FALSE(CFStringCreateWithBytes("a", -1, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringCreateWithBytes(nullptr, 1, kCFStringEncodingUTF8));
    EXPECT_EQ(CFStringGetLength(CFStringCreateWithBytes(nullptr, 0, kCFStringEncodingUTF8)), 0);
}

TEST(CFNumber, ConvertsWithoutLossOrSaysSo) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    constexpr std::int32_t narrowMost = std::numeric_limits<std::int32_t>::max();
    const std::tuple<CFNumberRef, std::int32_t, bool, std::int64_t, bool, bool> cases[] = {
        {CFNumberCreate(-5), -5, true, -5, true, true},
        {CFNumberCreate(std::int64_t{1} << 40), narrowMost, false, std::int64_t{1} << 40, true, true},
        {CFNumberCreate(most), narrowMost, false, most, true, false},
        {CFNumberCreate(2.0), 2, true, 2, true, true},
        {CFNumberCreate(-2.5), -2, false, -2, false, true},
        {CFNumberCreate(1e300), narrowMost, false, most, false, true},
        {CFNumberCreate(9223372036854775808.0), narrowMost, false, most, false, true},
        {CFNumberCreate(std::nan("")), 0, false, 0, false, true},
    };
    for (const auto& [number, narrowed, narrowExact, widened, wideExact, realExact] : cases) {
        std::int32_t narrow = 1;
        std::int64_t wide = 1;
        double real = 1.0;
        EXPECT_EQ(CFNumberGetValue(number, narrow), narrowExact) << widened;
        EXPECT_EQ(CFNumberGetValue(number, wide), wideExact) << widened;
        EXPECT_EQ(CFNumberGetValue(number, real), realExact) << widened;
        EXPECT_EQ(narrow, narrowed);
        EXPECT_EQ(wide, widened);
    }
}

TEST(CFCollections, KeepOrderAndLeaveOutNull) {
    const CFStringRef a = cfString("a");
    const CFStringRef b = cfString("b");
    const auto dictionary =
        CFDictionaryCreate({{b, a}, {nullptr, a}, {a, nullptr}, {a, a}, {cfString("b"), b}});
    ASSERT_EQ(CFDictionaryGetCount(dictionary), 2);
    EXPECT_EQ(dictionary->Pairs()[0], CFDictionary::Pair(b, b));
    EXPECT_EQ(CFDictionaryGetValue(dictionary, u"a"), a);
    EXPECT_FALSE(CFDictionaryGetValue(dictionary, u"c"));
    const auto array = CFArrayCreate({a, nullptr, b});
    EXPECT_EQ(CFArrayGetCount(array), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(array, 1), b);
    EXPECT_FALSE(CFArrayGetValueAtIndex(array, 2));
    EXPECT_FALSE(cfCast<CFDictionary>(CFTypeRef(array)));
}

TEST(CFEqual, ComparesKindAndContent) {
    // Values in one row are equal; values in different rows are not.
    const std::vector<std::vector<CFTypeRef>> rows = {
        {nullptr, nullptr},
        {cfString("1"), CFStringCreateWithCharacters(u"1")},
        {CFNumberCreate(1), CFNumberCreate(std::int64_t{1}), CFNumberCreate(1.0)},
        {CFNumberCreate(1.5)},
        {CFNumberCreate(std::numeric_limits<std::int64_t>::max())},
        {CFNumberCreate(9223372036854775808.0)},
        {CFBooleanCreate(true), CFBooleanCreate(true)},
        {CFBooleanCreate(false)},
        {CFDataCreate("1", 1), CFDataCreate("1", 1)},
        {CFArrayCreate({cfString("1")}), CFArrayCreate({cfString("1")})},
        {CFArrayCreate({})},
        {CFDictionaryCreate({{cfString("a"), cfString("1")}, {cfString("b"), cfString("2")}}),
         CFDictionaryCreate({{cfString("b"), cfString("2")}, {cfString("a"), cfString("1")}})},
        {CFDictionaryCreate({{cfString("a"), cfString("1")}, {cfString("c"), cfString("2")}})},
        {CFURLCreateWithString(cfString("1"))},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t j = 0; j < rows.size(); ++j) {
            for (const CFTypeRef& left : rows[i]) {
                for (const CFTypeRef& right : rows[j]) {
                    EXPECT_EQ(CFEqual(left, right), i == j) << i << " " << j;
                }
            }
        }
    }
}

TEST(CFURL, IsTakenApart) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"socket://10.0.0.7:9100/a%20b?x#y", "socket", "10.0.0.7", "/a b"},
        {"ipp://user:pw@host%2Ename:631", "ipp", "host.name", ""},
        {"ipp://[fe80::1%25eth0]:631/p", "ipp", "fe80::1%eth0", "/p"},
        {"usb:/dev/x", "usb", "", "/dev/x"},
        {"dnssd://My%20Printer._pdl-datastream._tcp.local./?uuid=1", "dnssd",
         "My Printer._pdl-datastream._tcp.local.", "/"},
        {"no/scheme:x", "", "", "no/scheme:x"},
        {"file:///a%00b", "file", "", ""},
        {"1a://h", "", "", "1a://h"},
    };
    for (const auto& [text, scheme, host, path] : cases) {
        const CFURLRef url = CFURLCreateWithString(cfString(text));
        ASSERT_TRUE(url) << text;
        EXPECT_EQ(utf8Text(CFURLCopyScheme(url)), scheme) << text;
        EXPECT_EQ(utf8Text(CFURLCopyHostName(url)), host) << text;
        EXPECT_EQ(CFURLCopyFileSystemPath(url), path) << text;
        EXPECT_EQ(utf8Text(CFURLGetString(url)), text);
    }
    for (const char* bad : {"", "a b", "a%2", "a%zz", "\xC3\xA9", "a\nb", "<x>"}) {
        EXPECT_FALSE(CFURLCreateWithString(cfString(bad))) << bad;
    }
}

TEST(CFURL, NamesFilesBothWays) {
    for (const char* path : {"/", "/etc/cups/ppd/a b%20#?.ppd", "/\xE4\xB8\xAD;[x]", "/raw\xFF\xFE"}) {
        const CFURLRef url = CFURLCreateWithFileSystemPath(path);
        EXPECT_TRUE(CFURLCreateWithString(CFURLGetString(url))) << path;
        FSRef file;
        EXPECT_TRUE(CFURLGetFSRef(url, file));
        EXPECT_EQ(file.path, path);
    }
    FSRef file{"old"};
    EXPECT_FALSE(CFURLGetFSRef(CFURLCreateWithString(cfString("http://h/x")), file));
    EXPECT_EQ(file.path, "");
    EXPECT_FALSE(CFURLCreateWithFileSystemPath(""));
    EXPECT_EQ(utf8Text(CFURLCopyScheme(CFURLCreateWithFileSystemPath("relative"))), "file");
}

} // namespace
} // namespace torka
