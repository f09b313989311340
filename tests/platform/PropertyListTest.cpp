// SPDX-License-Identifier: Apache-2.0
#include "platform/PropertyList.h"
#include "tests/support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <plist/plist.h>
#include <random>

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

// Python's plistlib makes random lists. Our reader and writer return each list unchanged.
TEST(PropertyList, AgreesWithPythonBothWays) {
    const tests::TemporaryFolder folder;
    constexpr const char* make = R"(
import plistlib, random, sys
r = random.Random(1)
CHARS = 'aZ09 <>&"\'\r\n\t\\]]>\u00e9\u4e2d\U0001F600\ue000'
def text(): return ''.join(r.choice(CHARS) for _ in range(r.randrange(12)))
def value(depth):
    kind = r.randrange(8 if depth < 5 else 6)
    if kind == 0: return text()
    if kind == 1: return r.choice([0, -1, 2**31 - 1, -2**31, 2**63 - 1, -2**63, r.randrange(10**6)])
    if kind == 2: return r.choice([0.5, -1e-300, 1.7976931348623157e308, 0.1, 1e22, r.random()])
    if kind == 3: return r.random() < 0.5
    if kind == 4: return bytes(r.randrange(256) for _ in range(r.randrange(100)))
    if kind in (5, 6): return [value(depth + 1) for _ in range(r.randrange(5))]
    return {text(): value(depth + 1) for _ in range(r.randrange(5))}
for i in range(300):
    plistlib.dump({'value': value(0)}, open('%s/%d.plist' % (sys.argv[1], i), 'wb'), sort_keys=False)
)";
    tests::runPython(make, {folder.Path().string()});
    for (int i = 0; i < 300; ++i) {
        const std::string name = std::to_string(i) + ".plist";
        std::string error;
        const auto list = readList(tests::readFile(folder / name), &error);
        ASSERT_TRUE(list) << error;
        folder.Write("ours" + name, writeList(list));
    }
    // Compares the text, too: keys keep their order, and true differs from 1.
    EXPECT_EQ(tests::runPython(R"(
import plistlib, sys
for i in range(300):
    a, b = (repr(plistlib.load(open('%s/%s%d.plist' % (sys.argv[1], n, i), 'rb'))) for n in ('', 'ours'))
    assert a == b, (a, b)
print('same'))",
                               {folder.Path().string()}),
              "same\n");
}

// A random value, and the same as libplist's node. `depth` begins with 1. The node is the caller's.
CFTypeRef randomValue(std::mt19937& random, int depth, plist_t& node) {
    const auto below = [&random](unsigned limit) { return static_cast<std::size_t>(random() % limit); };
    const auto text = [&] {
        static const std::string pieces[] = {
            "a",  "0",   " ",     "<",      ">",      "&",      "\"",     "'",          "\t",
            "\n", "]]>", "&#10;", "\u00e9", "\u07ff", "\u0800", "\ufffd", "\U00010000", "\U0010FFFF"};
        std::string made;
        for (std::size_t i = below(9); i > 0; --i) {
            made += pieces[below(std::size(pieces))];
        }
        return made;
    };
    switch (below(depth < 13 ? 8 : 5)) {
    case 0: {
        const std::string made = text();
        node = plist_new_string(made.c_str());
        return cfString(made);
    }
    case 1: {
        const auto number =
            static_cast<std::int64_t>((std::uint64_t{random()} << 32 | random()) >> below(64));
        node = plist_new_uint(static_cast<std::uint64_t>(number));
        return CFNumberCreate(number);
    }
    case 2: {
        const double number =
            std::ldexp(static_cast<double>(random()) - 2e9, static_cast<int>(below(400)) - 200);
        node = plist_new_real(number);
        return CFNumberCreate(number);
    }
    case 3:
        node = plist_new_bool(depth % 2 != 0 ? 1 : 0);
        return CFBooleanCreate(depth % 2 != 0);
    case 4: {
        std::string bytes(below(200), '\0');
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
        node = plist_new_data(bytes.data(), bytes.size());
        return CFDataCreate(bytes.data(), bytes.size());
    }
    default:
        break;
    }
    const bool isDictionary = below(2) == 0;
    node = isDictionary ? plist_new_dict() : plist_new_array();
    std::vector<CFTypeRef> values;
    std::vector<CFDictionary::Pair> pairs;
    for (std::size_t i = below(4); i > 0; --i) {
        plist_t child = nullptr;
        values.push_back(randomValue(random, depth + 1, child));
        const std::string key = text() + std::to_string(i);
        pairs.emplace_back(cfString(key), values.back());
        if (isDictionary) {
            plist_dict_set_item(node, key.c_str(), child);
        } else {
            plist_array_append_item(node, child);
        }
    }
    return isDictionary ? CFTypeRef(CFDictionaryCreate(pairs)) : CFTypeRef(CFArrayCreate(values));
}

TEST(PropertyList, IsWrittenByteForByteAsTheLibraryWritesIt) {
    std::mt19937 random(1);
    for (int i = 0; i < 20000; ++i) {
        plist_t node = nullptr;
        const CFTypeRef value = randomValue(random, 1, node);
        char* xml = nullptr;
        std::uint32_t length = 0;
        plist_to_xml(node, &xml, &length);
        ASSERT_EQ(writeList(value), std::string(xml, length));
        std::free(xml);
        plist_free(node);
    }
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
