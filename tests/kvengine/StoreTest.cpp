// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KeyForest.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace torka {
namespace {

using testing::ElementsAre;

// The pairs of a cache or list as "key=option" texts.
std::vector<std::string> named(UIConstraints& store, std::span<const KeyOption> pairs) {
    std::vector<std::string> names;
    const auto text = [&](std::int64_t id) { return std::string(store.GetConstraintStrings()->Find(id)); };
    for (const KeyOption& pair : pairs) {
        names.push_back(text(pair.key) + "=" + text(pair.option));
    }
    return names;
}

TEST(CStringSoup, InternsBytesUpToTheFirstNul) {
    CStringSoup soup;
    EXPECT_EQ(soup.Insert("Letter"), 0);
    EXPECT_EQ(soup.Insert("letter"), 1);
    EXPECT_EQ(soup.Insert(std::string_view("Letter\0x", 8)), 0);
    EXPECT_EQ(soup.Find("LETTER"), -1);
    EXPECT_EQ(soup.Find(2), nullptr);
    const char* const first = soup.Find(0);
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(soup.Insert(std::string(static_cast<std::size_t>(i % 200), 'x') + std::to_string(i)),
                  i + 2);
    }
    EXPECT_EQ(soup.Find(0), first);
    EXPECT_EQ(soup.Find(std::string(150, 'x') + "150"), 152);
    soup.Clear();
    EXPECT_EQ(soup.size(), 0U);
    EXPECT_EQ(soup.Find("Letter"), -1);
    EXPECT_EQ(soup.Insert("letter"), 0);
}

// A line between two keys of 5,000 options each is stored as one line, not as 25 million pairs. The answers
// are those of the pairs.
TEST(UIConstraints, AWildcardBetweenLongKeysAnswersAsIfWrittenOut) {
    constexpr int count = 5000;
    UIConstraints store;
    for (int i = 0; i < count; ++i) {
        store.KVSInsert("*K", "k" + std::to_string(i));
        store.KVSInsert("*L", i == 17 ? "None" : "l" + std::to_string(i));
    }
    store.Add("*K", "", "*L", "", false);
    store.Resolve();
    store.KVSInsert("*L", "late");
    for (const auto& [selected, forbidden] :
         {std::pair("l4999", true), {"None", false}, {"nothing", false}, {"late", false}}) {
        store.UpdateKVCache("*L", selected);
        for (int i = 0; i < count; ++i) {
            ASSERT_EQ(store.IsKVConstrained("*K", "k" + std::to_string(i)), forbidden) << selected << i;
        }
    }
}

TEST(ConstraintsEngine, DoesNoMoreWorkThanAllowed) {
    UIConstraints store;
    for (const char* option : {"1", "2", "3", "4"}) {
        store.KVSInsert("*X", option);
    }
    store.Add("*K", "A", "*X", "1", false);
    store.UpdateKVCache("*X", "1");
    const CStringSoup& soup = *store.GetConstraintStrings();
    KVCache change;
    change.Insert(soup.Find("*K"), soup.Find("A"));
    KVCache attempt = change;
    store.GetEngine()->LimitWork(0);
    EXPECT_EQ(store.GetEngine()->Solve(attempt, true).conflicts.size(), 1U);
    store.GetEngine()->LimitWork(ConstraintsEngine::maximumWork);
    EXPECT_EQ(store.GetEngine()->Solve(change, true).conflicts.size(), 0U);
    EXPECT_THAT(named(store, change.Pairs()), ElementsAre("*K=A", "*X=4"));
}

// Two keys exclude each other with every option. The search ends at its limits and returns the remaining
// conflicts.
TEST(ConstraintsEngine, GivesUpWhereNothingHelps) {
    UIConstraints store;
    for (int i = 0; i < 30; ++i) {
        store.KVSInsert("*K", "k" + std::to_string(i));
        store.KVSInsert("*L", "l" + std::to_string(i));
        for (int j = 0; j < 29; ++j) { // one option stays free as an alternative
            const std::string other = std::to_string((i + j) % 30);
            store.Add("*K", "k" + std::to_string(i), "*L", "l" + other, false);
            store.Add("*L", "l" + std::to_string(i), "*K", "k" + other, false);
        }
    }
    store.UpdateKVCache("*L", "l0");
    store.Add("*L", "l29", "*M", "m", false);
    store.UpdateKVCache("*M", "m");
    const CStringSoup& soup = *store.GetConstraintStrings();
    KVCache change;
    change.Insert(soup.Find("*K"), soup.Find("k0"));
    const auto answer = store.GetEngine()->Solve(change, true);
    EXPECT_GT(answer.conflicts.size(), 0U);
    EXPECT_EQ(answer.alternatives.size(), 0U);
    EXPECT_EQ(change.GetItem(soup.Find("*K")), soup.Find("k0"));
}

// A description may repeat one line and one option many times. The answer is cut before memory runs out.
TEST(ConstraintsEngine, CutsAnswersThatWouldExplode) {
    UIConstraints store;
    for (int i = 0; i < 3000; ++i) {
        store.KVSInsert("*K", "A");
        store.KVSInsert("*L", "X");
    }
    store.KVSInsert("*L", "None");
    store.Add("*K", "", "*L", "", false);
    store.Resolve();
    store.UpdateKVCache("*L", "X");
    const CStringSoup& soup = *store.GetConstraintStrings();
    KVCache change;
    change.Insert(soup.Find("*K"), soup.Find("A"));
    const auto answer = store.GetEngine()->Test(change);
    EXPECT_EQ(answer.conflicts.size(), ConstraintsEngine::maximumAnswers);
    EXPECT_EQ(answer.alternatives.size(), ConstraintsEngine::maximumAnswers);
    EXPECT_TRUE(store.IsKVConstrained("*K", "A"));
}

} // namespace
} // namespace torka
