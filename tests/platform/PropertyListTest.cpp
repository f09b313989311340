// SPDX-License-Identifier: Apache-2.0
#include "platform/PropertyList.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <plist/plist.h>

namespace torka {
namespace {

CFTypeRef readList(std::string_view xml, std::string* error = nullptr) {
    return CFPropertyListCreateFromXMLData(CFDataCreate(xml.data(), xml.size()), error);
}

std::string writeList(const CFTypeRef& list) {
    const auto bytes = CFPropertyListCreateXMLData(list);
    return bytes ? std::string(bytes->bytes.begin(), bytes->bytes.end()) : "none";
}

std::string within(std::string_view value) {
    return "<plist version=\"1.0\">" + std::string(value) + "</plist>";
}

std::string repeated(std::string_view text, std::size_t count) {
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

// Python's plistlib makes random lists. Our reader and writer return each list unchanged, and libplist writes
// each of them byte for byte as our writer does.
TEST(PropertyList, AgreesWithPythonBothWaysAndWithTheLibraryByteForByte) {
    const tests::TemporaryFolder folder;
    constexpr const char* make = R"(
import plistlib, random, sys
r = random.Random(1)
PIECES = list('aZ09 <>&"\'\r\n\t\\\u00e9\u07ff\u0800\u4e2d\ue000\ufffd\U00010000\U0001F600\U0010FFFF')
PIECES += [']]>', '&#10;']
def text(): return ''.join(r.choice(PIECES) for _ in range(r.randrange(12)))
def value(depth):
    kind = r.randrange(8 if depth < 12 else 5)
    if kind == 0: return text()
    if kind == 1: return r.choice([0, -1, -2**31, 2**63 - 1, -2**63, r.getrandbits(r.randrange(1, 64))])
    if kind == 2: return r.choice([0.1, -1e-300, 1.7976931348623157e308, 1e22,
                                   (r.random() - 0.5) * 2.0 ** r.randrange(-200, 200)])
    if kind == 3: return r.random() < 0.5
    if kind == 4: return r.randbytes(r.randrange(200))
    if kind in (5, 6): return [value(depth + 1) for _ in range(r.randrange(5))]
    return {text(): value(depth + 1) for _ in range(r.randrange(5))}
for i in range(700):
    plistlib.dump({'value': value(0)}, open('%s/%d.plist' % (sys.argv[1], i), 'wb'), sort_keys=False)
)";
    tests::runPython(make, {folder.Path().string()});
    for (int i = 0; i < 700; ++i) {
        const std::string name = std::to_string(i) + ".plist";
        const std::string theirs = tests::readFile(folder / name);
        std::string error;
        const auto list = readList(theirs, &error);
        ASSERT_TRUE(list) << error;
        const std::string ours = writeList(list);
        folder.Write("ours" + name, ours);
        plist_t node = nullptr;
        char* xml = nullptr;
        std::uint32_t length = 0;
        plist_from_xml(theirs.data(), static_cast<std::uint32_t>(theirs.size()), &node);
        plist_to_xml(node, &xml, &length);
        ASSERT_EQ(ours, std::string(xml, length));
        std::free(xml);
        plist_free(node);
    }
    // Compares the text, too: keys keep their order, and true differs from 1.
    EXPECT_EQ(tests::runPython(R"(
import plistlib, sys
for i in range(700):
    a, b = (repr(plistlib.load(open('%s/%s%d.plist' % (sys.argv[1], n, i), 'rb'))) for n in ('', 'ours'))
    assert a == b, (a, b)
print('same'))",
                               {folder.Path().string()}),
              "same\n");
}

TEST(PropertyList, ReadsWhatXmlAllows) {
    const std::pair<std::string, CFTypeRef> cases[] = {
        {"\xEF\xBB\xBF<?xml version='1.0' encoding='utf-8'?><!-- a --><!DOCTYPE plist><?pi?>" +
             within(" <!-- b --> <true/> ") + "\n<!-- c -->",
         CFBooleanCreate(true)},
        {within("<string> a<!-- x --><![CDATA[<&amp;]]>&#x41;&quot;\r\nb&#13;</string>"),
         cfString(" a<&amp;A\"\nb\r")},
        {within("<integer> 010 </integer>"), CFNumberCreate(10)},
        {within("<integer>-0xFF</integer>"), CFNumberCreate(-255)},
        {within("<real>+1.5</real>"), CFNumberCreate(1.5)},
        {within("<data>\n A A\tEC </data>"), CFDataCreate("\0\1\2", 3)},
        {within("<dict><key>a</key><true/><key>b</key><true/><key>a</key><false></false></dict>"),
         CFDictionaryCreate(
             {{cfString("a"), CFBooleanCreate(false)}, {cfString("b"), CFBooleanCreate(true)}})},
        {within(repeated("<array>", 64) + repeated("</array>", 64)), nullptr},
    };
    for (const auto& [xml, expected] : cases) {
        std::string error;
        const auto list = readList(xml, &error);
        EXPECT_TRUE(list) << xml << ": " << error;
        EXPECT_TRUE(!expected || CFEqual(list, expected)) << xml << writeList(list);
    }
}

TEST(PropertyList, RefusesWhatItCannotTrust) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "ends too early"},
        {within(""), "no property list|out of place"},
        {"<string>a</string>", "no property list"},
        {within("<string>a</string><string>b</string>"), "holds one value"},
        {within("<true/>") + "x", "follows"},
        {within("<date>2020-01-01T00:00:00Z</date>"), "dates"},
        {within("<real>1,5</real>"), "no real"},
        {within("<real>nan</real>"), "no real"},
        {within("<real>1e400</real>"), "no real"},
        {within("<real>+-1</real>"), "no real"},
        {within("<integer>9223372036854775808</integer>"), "64 bits"},
        {within("<integer>-9223372036854775809</integer>"), "64 bits"},
        {within("<integer>1" + std::string(1000, '0') + "</integer>"), "64 bits"},
        {within("<integer>1a</integer>"), "no integer"},
        {within("<integer/>"), "no integer"},
        {within("<data>AAE</data>"), "Base64"},
        {within("<data>AA==AAEC</data>"), "Base64"},
        {within("<dict><key>a</key></dict>"), "out of place"},
        {within("<dict><true/></dict>"), "key is missing"},
        {within("<array><string>a</array>"), "holds an element"},
        {within("<string a='b'>x</string>"), "attributes"},
        {within("<string>&unknown;</string>"), "not known"},
        {within("<string>&#0;</string>"), "character reference"},
        {within("<string>&#xD800;</string>"), "character reference"},
        {within("\n\n<what/>"), "line 3: \"what\" is no value"},
        {within("<string>\x01</string>"), "UTF-8"},
        {within("<string>\xFF</string>"), "UTF-8"},
        {within(std::string("<string>a\0b</string>", 21)), "UTF-8"},
        {"<?xml version='1.0' encoding='UTF-16'?>" + within("<true/>"), "encoding"},
        {"<!DOCTYPE plist [<!ENTITY a 'b'>]>" + within("<string>&a;</string>"), "document type"},
        {within(repeated("<array>", 65) + repeated("</array>", 65)), "too deep"},
        {within(repeated("<array>", 1'000'000)), "too deep"},
        {within("<array>" + repeated("<true/>", 100'001) + "</array>"), "more than"},
        {std::string(70'000'000, ' '), "larger than"},
    };
    for (const auto& [xml, reason] : cases) {
        std::string error;
        EXPECT_FALSE(readList(xml, &error)) << xml.substr(0, 200);
        EXPECT_TRUE(::testing::Value(error, ::testing::ContainsRegex(reason)))
            << xml.substr(0, 200) << ": " << error;
    }
    EXPECT_FALSE(CFPropertyListCreateFromXMLData(nullptr));
}

TEST(PropertyList, AListCutShortIsNeverTakenForAWholeOne) {
    const std::string whole = writeList(CFDictionaryCreate(
        {{cfString("a<"), CFArrayCreate({cfString("x"), CFNumberCreate(1.5), CFDataCreate("abc", 3)})}}));
    const std::size_t end = whole.rfind('>') + 1;
    ASSERT_TRUE(readList(whole.substr(0, end)));
    for (std::size_t length = 0; length < end; ++length) {
        EXPECT_FALSE(readList(whole.substr(0, length))) << length;
    }
}

TEST(PropertyList, WritesOnlyWhatItCanReadAgain) {
    CFTypeRef deep = CFBooleanCreate(true);
    for (int i = 0; i < 64; ++i) {
        deep = CFArrayCreate({deep});
    }
    EXPECT_TRUE(CFEqual(readList(writeList(deep)), deep));
    const CFTypeRef refused[] = {
        nullptr,
        CFArrayCreate({deep}),
        CFURLCreateWithFileSystemPath("/a"),
        CFArrayCreate({CFURLCreateWithFileSystemPath("/a")}),
        cfString("a\x01"),
        cfString(std::string("a\0b", 3)),
        CFStringCreateWithCharacters(u"\xD800"),
        CFDictionaryCreate({{cfString("\x02"), cfString("a")}}),
        CFNumberCreate(1e308 * 10),
    };
    for (const CFTypeRef& list : refused) {
        EXPECT_EQ(writeList(list), "none");
    }
}

} // namespace
} // namespace torka
