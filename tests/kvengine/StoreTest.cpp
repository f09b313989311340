// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>

namespace torka {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string text(UIConstraints& store, std::int64_t id) { return store.GetConstraintStrings()->Find(id); }

// The pairs of a cache or list as "key=option" texts.
std::vector<std::string> named(UIConstraints& store, std::span<const KeyOption> pairs) {
    std::vector<std::string> names;
    for (const KeyOption& pair : pairs) {
        names.push_back(text(store, pair.key) + "=" + text(store, pair.option));
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

// The fuzz target constraint_store compares the whole store with a slow one.
TEST(KVCache, AgreesWithAPlainSequence) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 300; ++trial) {
        const int keyCount = trial % 3 == 0 ? 4 : 200;
        const bool mayRepeat = trial % 2 == 0;
        KVCache cache;
        std::vector<KeyOption> plain;
        const auto below = [&](int limit) {
            return std::uniform_int_distribution<std::int64_t>(0, limit - 1)(random);
        };
        const auto entryOf = [&](std::int64_t key) { return std::ranges::find(plain, key, &KeyOption::key); };
        for (int step = 0; step < 600; ++step) {
            const KeyOption pair{below(keyCount) - 1, below(5) - 1};
            switch (below(mayRepeat ? 9 : 8)) {
            default:
                cache.Insert(pair.key, pair.option);
                if (const auto entry = entryOf(pair.key); pair.key >= 0 && entry != plain.end()) {
                    entry->option = pair.option;
                } else if (pair.key >= 0) {
                    plain.push_back(pair);
                }
                break;
            case 5:
                ASSERT_EQ(cache.pop_front(), plain.empty() ? (KeyOption{0, 0}) : plain.front());
                if (!plain.empty()) {
                    plain.erase(plain.begin());
                }
                break;
            case 6:
                ASSERT_EQ(cache.pop_back(), plain.empty() ? (KeyOption{0, 0}) : plain.back());
                if (!plain.empty()) {
                    plain.pop_back();
                }
                break;
            case 8:
                cache.add(pair);
                plain.push_back(pair);
            }
            const KeyOption asked{below(keyCount), below(5) - 1};
            const auto found = std::find(plain.begin(), plain.end(), asked);
            ASSERT_EQ(cache.Lookup(asked), found == plain.end() ? -1 : found - plain.begin());
            const auto entry = entryOf(asked.key);
            ASSERT_EQ(cache.GetItem(asked.key), entry == plain.end() ? -1 : entry->option);
        }
        ASSERT_TRUE(std::ranges::equal(cache.Pairs(), plain));
        if (!mayRepeat) {
            ASSERT_FALSE(cache.HasRepeatedKeys());
        }
        std::shuffle(plain.begin(), plain.end(), random);
        const auto isEqual = [&] {
            KVCache other;
            std::ranges::for_each(plain, [&](const KeyOption& pair) { other.add(pair); });
            return cache == other;
        };
        ASSERT_TRUE(isEqual());
        if (!plain.empty()) {
            ++plain.front().option;
            ASSERT_FALSE(isEqual());
        }
    }
}

// A line between two keys of 5,000 options each is stored as one line, not as 25 million pairs. The answers
// are those of the pairs.
// Options stay in ascending order, near or far from one another, and each option's lines in their own.
TEST(ConstraintForest, KeepsTheLinesOfAnOptionInTheirOrder) {
    std::mt19937 random(11);
    std::uniform_int_distribution<std::int64_t> any;
    for (const std::int64_t spread : {1, 2, 20, 62, 63, 64, 1000}) {
        ConstraintForest forest;
        std::vector<std::array<std::int64_t, 2>> expected; // an option and the number of its line
        for (std::int64_t line = 0; line < 90; ++line) {
            const std::int64_t step = line == 1 ? spread : line == 0 ? 0 : any(random) % (spread + 1);
            expected.push_back({step + 100, line});
            forest.insert(7, step + 100, 8, line);
        }
        std::ranges::stable_sort(expected, {}, [](const auto& each) { return each[0]; });
        std::vector<std::array<std::int64_t, 2>> found;
        forest.ForEach([&](std::int64_t, std::int64_t option, const KeyOption& pair) {
            found.push_back({option, pair.option});
            return true;
        });
        EXPECT_EQ(found, expected) << spread;
    }
}

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

// A store with chains of constraints, one pair twice and one wildcard line.
struct Chains : testing::Test {
    Chains() {
        for (const std::string key : {"*A", "*B", "*C"}) {
            for (const char* option : {"1", "2", "3"}) {
                store.KVSInsert(key, option);
            }
        }
        for (const std::string line :
             {"A1B1", "A1C2", "B1B3", "B1C1", "B2C1", "B2C1", "C1A2", "C2A2", "C2A3", "C3A"}) {
            store.Add(std::string("*") + line[0], line.substr(1, 1), std::string("*") + line[2],
                      line.substr(3), false);
        }
        store.Resolve();
    }
    std::int64_t Id(const char* text) {
        return *text == '\0' ? -1 : store.GetConstraintStrings()->Find(std::string_view(text));
    }
    // "A1B1": *A=1 constrains *B=1.
    std::string Constraints() {
        std::string all;
        const auto name = [&](std::int64_t id) { return text(store, id); };
        store.GetConstraintForest()->ForEach(
            [&](std::int64_t key, std::int64_t option, const KeyOption& pair) {
                all += name(key)[1] + name(option) + name(pair.key)[1] + name(pair.option) + " ";
                return true;
            });
        return all;
    }
    UIConstraints store;
};

TEST_F(Chains, AreDisabledAndRestoredInTurn) {
    ConstraintForest& forest = *store.GetConstraintForest();
    struct Step {
        bool disables;
        std::array<const char*, 4> pairs; // "" for any
        const char* left;
    };
    for (const auto& [disables, pairs, left] : std::initializer_list<Step>{
             {true,
              {"*A", "1", "*B", ""},
              "A1C2 B1C1 B2C1 B2C1 C1A2 C2A2 C2A3 C3A1 C3A2 C3A3 "}, // *B=1 no longer constrains *B=3 either
             {true, {"", "", "*C", "1"}, "A1C2 C1A2 C2A2 C2A3 C3A1 C3A2 C3A3 "},
             {true, {"*C", "3", "*A", "2"}, "A1C2 C1A2 C2A2 C2A3 C3A1 C3A3 "},
             {false, {"*A", "1", "", ""}, "A1B1 A1C2 B1B3 B1C1 C1A2 C2A2 C2A3 C3A1 C3A3 "},
             {false, {"*B", "2", "", ""}, "A1B1 A1C2 B1B3 B1C1 B2C1 B2C1 C1A2 C2A2 C2A3 C3A1 C3A3 "},
             {true, {"*B", "", "*B", "3"}, "A1B1 A1C2 B1C1 B2C1 B2C1 C1A2 C2A2 C2A3 C3A1 C3A3 "},
             {false, {"", "", "", ""}, "A1B1 A1C2 B1B3 B1C1 B2C1 B2C1 C1A2 C2A2 C2A3 C3A1 C3A2 C3A3 "}}) {
        const auto& [key, option, key2, option2] = pairs;
        EXPECT_TRUE(disables ? forest.DisableConstraints(Id(key), Id(option), Id(key2), Id(option2))
                             : forest.EnableConstraints(Id(key), Id(option), Id(key2), Id(option2)));
        EXPECT_EQ(Constraints(), left) << key << option << key2 << option2;
        EXPECT_FALSE(forest.DisableConstraints(Id("3"), -1, Id("*A"), -1)) << "it has no tree";
    }
    forest.DisableConstraints(Id("*B"), -1, Id("*C"), -1);
    store.Add("*B", "2", "*A", "1", false);
    EXPECT_EQ(Constraints(), "A1B1 A1C2 B1B3 B2A1 C1A2 C2A2 C2A3 C3A1 C3A2 C3A3 ");
    forest.EnableConstraints(-1, -1, -1, -1);
    EXPECT_EQ(Constraints(), "A1B1 A1C2 B1B3 B1C1 B2C1 B2C1 C1A2 C2A2 C2A3 C3A1 C3A2 C3A3 ")
        << "as when it was disabled";
}

TEST_F(Chains, OptionsAreListedByWhatTheyConstrain) {
    ConstraintsEngine& engine = *store.GetEngine();
    const auto listed = [&](const KVCache& cache) { return named(store, cache.Pairs()); };
    const auto current = [&](const char* key) { return listed(engine.ListCurrentConstraints(Id(key))); };
    store.UpdateKVCache("*C", "1");
    store.UpdateKVCache("*A", "2");
    EXPECT_THAT(current("*A"), IsEmpty());
    EXPECT_THAT(current("*B"), ElementsAre("*B=1", "*B=2"));
    EXPECT_THAT(current("*C"), ElementsAre("*C=1", "*C=2", "*C=3"));
    EXPECT_THAT(current(""), IsEmpty());
    const auto blocking = [&](const char* key1, const char* excluded, const char* key2) {
        return listed(engine.ListBlockingConstraints(Id(key1), Id(excluded), Id(key2)));
    };
    EXPECT_THAT(blocking("*A", "1", "*C"), ElementsAre("*C=2"));
    for (const auto& [key1, excluded, key2] : {std::tuple{"*A", "2", "*C"},
                                               {"*B", "1", "*A"},
                                               {"*A", "", "*C"},
                                               {"", "1", "*C"},
                                               {"*A", "1", ""}}) {
        EXPECT_THAT(blocking(key1, excluded, key2), IsEmpty()) << key1 << excluded << key2;
    }
    KVCache selections;
    const auto screened = [&](bool exact, const char* key) {
        return listed(engine.ListScreenedConstraints(selections, exact, Id(key)));
    };
    selections.Insert(Id("*B"), Id("1"));
    EXPECT_THAT(screened(true, "*A"), ElementsAre("*A=1"));
    selections.Insert(Id("*C"), Id("1"));
    EXPECT_THAT(screened(false, "*A"), ElementsAre("*A=1"));
    EXPECT_THAT(screened(true, "*A"), IsEmpty());
    EXPECT_THAT(screened(false, "*B"), ElementsAre("*B=2")) << "the last one";
}

} // namespace
} // namespace torka
