// SPDX-License-Identifier: Apache-2.0
#include "PPDX/Utilities/CError.h"
#include "PPDX/Utilities/CString.h"
#include "PPDX/Utilities/ModelState.h"
#include "PPDX/Utilities/PointerList.h"
#include "PPDX/Utilities/given/BoyerMoore.h"
#include "PPDX/Utilities/given/PtrLinkList.h"
#include "PPDX/Utilities/given/StringFunctions.h"
#include "StringUtils.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace torka {
namespace {

// Restores the process-wide values.
class ModelStateTest : public testing::Test {
protected:
    void TearDown() override {
        gQVUTF8Version = 0;
        gPopupJobNotesLangIsJapanese = gDocumentServer = false;
        SetApplicationTextEncoding(kCFStringEncodingUnknown);
    }
};

TEST_F(ModelStateTest, NarrowTextFollowsLevelJapaneseNotesAndDocumentServer) {
    const CFStringRef text = cfString("caf\u00e9");
    const std::tuple<int, bool, bool, bool> cases[] = {
        {0, false, false, false}, {4, false, false, false}, {5, true, false, false}, {7, true, false, false},
        {7, false, false, true},  {7, false, true, true},   {5, false, true, false}, {6, false, true, false},
        {6, false, false, true},  {5, false, false, true}};
    SetApplicationTextEncoding(kCFStringEncodingISOLatin1);
    for (const auto& [level, japanese, server, isUtf8] : cases) {
        gQVUTF8Version = level;
        gPopupJobNotesLangIsJapanese = japanese;
        gDocumentServer = server;
        CString converted;
        converted = text;
        EXPECT_STREQ(converted, isUtf8 ? "caf\xC3\xA9" : "caf\xE9") << level;
        EXPECT_EQ(CString(text).Size(), 4U); // counts units, even when there are five bytes
    }
    gQVUTF8Version = 0;
    CString failed("before");
    failed = cfString("\u65e5"); // not in ISO Latin 1
    EXPECT_STREQ(failed, "");
    EXPECT_TRUE(CString("caf\xC3\xA9") == text);
    SetApplicationTextEncoding(kCFStringEncodingUTF16);
    EXPECT_EQ(GetApplicationTextEncoding(), kCFStringEncodingUTF8);
}

TEST_F(ModelStateTest, StringWhoseLengthCountsUnitsIsEditedWithinItsBytes) {
    gQVUTF8Version = 7;
    CString text(cfString("\u65e5\u672c"));
    EXPECT_EQ(text.Size(), 2U);
    text + "!";
    EXPECT_STREQ(text, "\u65e5\u672c!");
    EXPECT_EQ(text.Size(), 7U);
    text.Replace(CString(cfString("\u65e5")), "x");
    EXPECT_STREQ(text, "x\u672c!");
}

TEST(CString, UnsetEmptyAndAliasedTexts) {
    const CString unset;
    CString text("abcabc");
    EXPECT_TRUE(text == unset);
    EXPECT_FALSE(unset == text);
    EXPECT_FALSE(unset == "x");
    EXPECT_TRUE(unset.Empty() && CString("").Empty());
    text.Replace("bc", "X");
    EXPECT_STREQ(text, "aXabc");
    EXPECT_EQ(text.Size(), 5U);
    text.Replace("aX", text); // the replacement is the string itself
    EXPECT_STREQ(text, "aXabcabc");
    text = text.Buffer() + 2; // a text inside the old buffer
    EXPECT_STREQ(text, "abcabc");
    char* const inside = std::strstr(const_cast<char*>(text.Buffer()), "ca");
    text.Remove(inside, 100);
    EXPECT_STREQ(text, "ab");
    EXPECT_EQ(text.Size(), 2U);
    char elsewhere[] = "zz";
    text.Insert(elsewhere, "no");
    EXPECT_STREQ(text, "ab");
    EXPECT_TRUE(CString("Hello Aachen").Contains("LO a"));
    EXPECT_TRUE(CString("fuzz").Contains("ZZ"));
    EXPECT_FALSE(CString("Hello").Contains("low"));
    CString joined;
    EXPECT_STREQ(joined + "" + "a" + "b", "ab");
}

TEST(PointerList, FollowsAListThroughRandomEdits) {
    std::mt19937 random(1);
    int elements[8];
    PointerList list;
    std::list<void*> oracle;
    EXPECT_TRUE(list.Erase(list.End()) == list.Begin());
    for (int step = 0; step < 3000; ++step) {
        void* const element = &elements[random() % 8];
        const std::size_t place = random() % (oracle.size() + 1);
        auto itr = list.Begin();
        auto other = oracle.begin();
        for (std::size_t i = 0; i < place; ++i, ++itr, ++other) {
        }
        const auto kind = random() % 30;
        if (kind == 0) {
            EXPECT_TRUE(list.Erase(itr, list.End()) == list.End());
            oracle.erase(other, oracle.end());
        } else if (kind < 6) {
            list.PushBack(element), oracle.push_back(element);
        } else if (kind < 11) {
            list.PushFront(element), oracle.push_front(element);
        } else if (kind < 16) {
            EXPECT_EQ(*list.InsertBefore(itr, element), element);
            oracle.insert(other, element);
        } else if (kind < 21 && other != oracle.end()) {
            list.Erase(itr), oracle.erase(other);
        } else if (kind >= 25) {
            list.PopFront();
            oracle.empty() ? void() : oracle.pop_front();
        }
        ASSERT_EQ(list.Size(), oracle.size());
        ASSERT_EQ(std::vector<void*>(list.begin(), list.end()),
                  std::vector<void*>(oracle.begin(), oracle.end()));
        ASSERT_EQ(list.Back(), oracle.empty() ? nullptr : oracle.back());
    }
    PointerList copy(list);
    const PointerList& itself = copy;
    copy = itself;
    list = copy;
    EXPECT_EQ(list.Front(), oracle.empty() ? nullptr : oracle.front());
    PointerListItr null;
    EXPECT_EQ(*++null, nullptr);
}

TEST(PtrLinkList, OwnsItsElements) {
    const auto alive = std::make_shared<int>();
    struct Element : LinkElement_Dual {
        explicit Element(std::shared_ptr<int> counted)
            : counter(std::move(counted)) {}
        std::shared_ptr<int> counter;
    };
    PtrLinkList(new Element(alive)).add(new Element(alive));
    EXPECT_EQ(alive.use_count(), 1);
}

TEST(BoyerMoore, FindsWhatAPlainSearchFinds) {
    std::mt19937 random(2);
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 60, ' '), pattern(2 + random() % 4, ' ');
        for (std::string* made : {&text, &pattern}) {
            std::ranges::generate(*made, [&] { return "abc\xFF"[random() % 4]; });
        }
        std::vector<char> data(text.begin(), text.end()); // exact size, for the sanitizer
        BoyerMoore search(pattern.data(), static_cast<short>(pattern.size()), data.data(),
                          static_cast<long>(data.size()));
        ASSERT_EQ(search.Search(), static_cast<long>(text.find(pattern))) << text << " / " << pattern;
    }
}

std::string replaced(const char* src, const char* what, const char* with) {
    const std::unique_ptr<char, decltype(&std::free)> result(_replace(src, what, with), &std::free);
    return result ? result.get() : "(null)";
}

TEST(StringFunctions, Replace) {
    EXPECT_EQ(replaced("aXbX", "X", "YY"), "aYYbYY");
    EXPECT_EQ(replaced("aaabbb", "ab", ""), "");    // each removal creates the next occurrence
    EXPECT_EQ(replaced("xax", "x", "xx"), "xxaxx"); // replaces each occurrence once
    EXPECT_EQ(replaced("abc", "", "x"), "abc");
    EXPECT_EQ(replaced(nullptr, "a", "b"), "(null)");
    const std::string exponential = std::string(60, 'a') + "b";
    EXPECT_EQ(replaced(exponential.c_str(), "ab", "bba"), "(null)");
    EXPECT_EQ(replaced("aabbab", "ab", "b"), "bbb"); // the search begins anew after each replacement
    EXPECT_EQ(replaced("baabab", "bab", "a"), "baaa");
    EXPECT_EQ(replaced("aabaab", "aab", "ba"), "baba");
}

TEST(StringFunctions, NumbersAreThoseOfTheCLibrary) {
    std::mt19937 random(4);
    char own[kNumberCapacity], theirs[512];
    for (const float number :
         {0.0F, -0.0F, 1.5F, 0.00005F, 12345.678F, -99999.99F, FLT_MAX, -FLT_MAX, FLT_MIN, 0.03125F}) {
        float2String(own, number);
        std::snprintf(theirs, sizeof theirs, "%9.4f", static_cast<double>(number));
        EXPECT_STREQ(own, theirs);
    }
    for (int round = 0; round < 2000; ++round) {
        const float number =
            static_cast<float>(static_cast<int>(random())) / static_cast<float>(1 + random() % 100000);
        float2String(own, number);
        std::snprintf(theirs, sizeof theirs, "%9.4f", static_cast<double>(number));
        ASSERT_STREQ(own, theirs);
        const std::string text = std::string(random() % 2, '\n') + std::string(random() % 2, '+') + own;
        EXPECT_FLOAT_EQ(floatValue(text), std::strtof(text.c_str(), nullptr)) << text;
        EXPECT_EQ(integerValue(text), std::atol(text.c_str())) << text;
    }
    num2String(-2147483647 - 1, own);
    EXPECT_STREQ(own, "-2147483648");
    EXPECT_EQ(integerValue("99999999999999999999"), INT64_MAX);
    EXPECT_EQ(integerValue("-99999999999999999999 "), INT64_MIN);
    EXPECT_TRUE(integerOverflows(" 99999999999999999999"));
    EXPECT_EQ(integerValue("x"), 0);
    EXPECT_EQ(floatValue("1e99"), 0.0F);
    EXPECT_EQ(floatValue("nan"), 0.0F);
    EXPECT_EQ(string2Number(" 42x"), 42);
    EXPECT_EQ(wtoi(L"  -12\u00e9"), -12);
    EXPECT_EQ(wtoi(L"99999999999"), 2147483647);
}

TEST(StringFunctions, TextsAndBounds) {
    const std::string longText(400, 'q');
    unsigned char pascal[256];
    char back[256];
    EXPECT_STREQ(ptoCStr(ctoPStr(longText.c_str(), pascal), back), longText.substr(0, 255).c_str());
    EXPECT_STREQ(ptoCStr(ctoPStr("ab", pascal), back), "ab");
    for (const auto& [from, to, result] : {std::tuple<std::uint16_t, std::uint16_t, const char*>{1, 3, "ade"},
                                           {0, 99, ""},
                                           {3, 3, "abcde"},
                                           {3, 2, "abcde"},
                                           {6, 9, "abcde"}}) {
        char text[] = "abcde";
        EXPECT_EQ(deleteCharRangeInStr(text, from, to), std::strlen(result));
        EXPECT_STREQ(text, result);
    }
    EXPECT_EQ(validateRangeValues("12a345", 2), 0);
    EXPECT_EQ(validateRangeValues("12a345", 3), 1);
    const std::unique_ptr<char, decltype(&std::free)> filled(newInitalizedCString(3, 'z'), &std::free);
    EXPECT_STREQ(filled.get(), "zzz");
    EXPECT_EQ(newInitalizedCString(SIZE_MAX, 'z'), nullptr);
    EXPECT_STREQ(findChar("abcb", 'b'), "bcb");
    EXPECT_EQ(unquoted(" \t\"1.0\" "), "1.0");
    EXPECT_EQ(unquoted("\""), "\"");
    const CError error(-43, "gone", true);
    EXPECT_TRUE(error == -43 && error != 0 && error.IsFatal());
    EXPECT_STREQ(error.Description(), "gone");
    EXPECT_EQ(CError(3, "").Description(), nullptr);
}

} // namespace
} // namespace torka
