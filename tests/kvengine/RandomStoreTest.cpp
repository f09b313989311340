// SPDX-License-Identifier: Apache-2.0
#include "Oracle.h"

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KeyForest.h"
#include "PPDX/KVEngine/UIConstraints.h"

#include <gtest/gtest.h>

#include <random>

namespace torka {

static void PrintTo(const KeyOption& pair, std::ostream* out) { *out << pair.key << '=' << pair.option; }

namespace {

using oracle::Id;
using oracle::Pairs;

Pairs pairsOf(const KVCache& cache) { return {cache.Pairs().begin(), cache.Pairs().end()}; }

KVCache cacheOf(const Pairs& pairs) {
    KVCache cache;
    for (const KeyOption& pair : pairs) {
        cache.add(pair);
    }
    return cache;
}

// A small random store and its oracle. It has few keys and options, so that constraints interact often.
class Twins {
public:
    explicit Twins(unsigned seed)
        : random(seed) {
        keyCount = 2 + Below(4);
        optionCount = 1 + Below(5);
        const int steps = 5 + Below(40);
        for (int i = 0; i < steps; ++i) {
            Step();
        }
        if (Below(8) > 0) {
            Resolve();
        }
        if (Below(4) == 0) { // adds options and lines after the lines were resolved
            for (int i = Below(10); i > 0; --i) {
                Step();
            }
            Resolve();
        }
    }

    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random); }
    std::string Key() { return "*K" + std::to_string(Below(keyCount)); }
    static std::string OptionNamed(int i) {
        return i == 0 ? "None" : i == 1 ? "False" : "O" + std::to_string(i);
    }
    std::string Option() { return OptionNamed(Below(optionCount + 2)); }
    Id AnyKey() { return Below(12) == 0 ? -1 : slow.find(Key()); }
    Id AnyOption() { return Below(8) == 0 ? -1 : slow.find(Option()); }
    // Mostly pairs with each key once, as Insert makes them; sometimes arbitrary pairs for add.
    Pairs AnyPairs(int most) {
        Pairs pairs;
        const bool repeated = Below(4) == 0;
        for (int i = Below(most + 1); i > 0; --i) {
            const KeyOption pair{AnyKey(), AnyOption()};
            if (repeated) {
                pairs.push_back(pair);
            } else {
                oracle::insert(pairs, pair.key, pair.option);
            }
        }
        return pairs;
    }

    void CompareStores() {
        ASSERT_EQ(fast.GetConstraintStrings()->size(), slow.texts.size());
        for (std::size_t i = 0; i < slow.texts.size(); ++i) {
            ASSERT_EQ(fast.GetConstraintStrings()->Find(static_cast<Id>(i)), slow.texts[i]);
        }
        CompareForests(*fast.GetRequiresForest(), slow.requirements);
        CompareForests(*fast.GetConstraintForest(), slow.constraints);
        std::unique_ptr<KVCache> keys;
        fast.GetKeyForest()->GetKeys(keys);
        Pairs expected;
        for (const auto& [key, options] : slow.options) {
            for (const Id option : options) {
                expected.push_back({key, option});
            }
        }
        ASSERT_EQ(pairsOf(*keys), expected);
    }

    void CompareAnswers() {
        for (int key = 0; key < keyCount + 1; ++key) {
            for (int option = 0; option < optionCount + 3; ++option) {
                const std::string k = "*K" + std::to_string(key);
                const std::string o = OptionNamed(option);
                Pairs change;
                oracle::insert(change, slow.find(k), slow.find(o));
                ASSERT_EQ(fast.IsKVConstrained(k, o), !slow.test(change).conflicts.empty()) << k << ' ' << o;
            }
        }
        ASSERT_EQ(fast.GetConstraintStrings()->size(), slow.texts.size()) << "a question interned something";
        CompareEngine(*fast.GetEngine());

        const Pairs live = slow.current;
        if (Below(3) == 0) {
            slow.current = AnyPairs(6);
        }
        slow.locked = AnyPairs(2);
        const KVCache current = cacheOf(slow.current);
        const KVCache locked = cacheOf(slow.locked);
        ConstraintsEngine engine(&current, fast.GetConstraintForest(), fast.GetKeyForest(), &locked);
        CompareEngine(engine);
        slow.current = live;
        slow.locked.clear();
    }

    void DisableAndEnable() {
        for (int i = 1 + Below(4); i > 0; --i) {
            const Id key = AnyKey();
            const Id option = AnyOption();
            const Id key2 = slow.find(Key());
            const Id option2 = AnyOption();
            ConstraintForest& forest = *fast.GetConstraintForest();
            if (Below(3) > 0) {
                ASSERT_EQ(forest.DisableConstraints(key, option, key2, option2),
                          slow.disable(key, option, key2, option2));
            } else {
                ASSERT_EQ(forest.EnableConstraints(key, option, key2, option2), slow.enable(key, option));
            }
            ASSERT_NO_FATAL_FAILURE(CompareForests(forest, slow.constraints));
        }
        for (int i = Below(10); i > 0; --i) { // adds lines while lists are set aside
            Step();
        }
        Resolve();
        ASSERT_NO_FATAL_FAILURE(CompareForests(*fast.GetConstraintForest(), slow.constraints));
        fast.GetConstraintForest()->EnableConstraints(-1, -1, -1, -1);
        slow.enable(-1, -1);
        CompareForests(*fast.GetConstraintForest(), slow.constraints);
    }

    oracle::Store slow;
    UIConstraints fast;

private:
    void Step() {
        if (Below(8) == 0) { // a query resolves the lines so far
            fast.IsKVConstrained(Key(), Option());
        }
        const int kind = Below(10);
        if (kind < 4) {
            const std::string key = Key();
            const std::string option = Option();
            fast.KVSInsert(key, option);
            slow.record(key, option);
        } else if (kind < 8) {
            const std::string line[4] = {Key(), Below(3) == 0 ? "" : Option(), Key(),
                                         Below(3) == 0 ? "" : Option()};
            const bool requirement = Below(6) == 0;
            fast.Add(line[0], line[1], line[2], line[3], requirement);
            slow.addLine(line[0], line[1], line[2], line[3], requirement);
        } else {
            const std::string key = Key();
            const std::string option = Option();
            fast.UpdateKVCache(key, option);
            const Id k = slow.intern(key);
            oracle::insert(slow.current, k, slow.intern(option));
        }
    }

    void Resolve() {
        fast.Resolve();
        slow.resolve();
    }

    void CompareForests(const ConstraintForest& forest, const oracle::Store::Lists& lists) {
        Pairs expected; // each list's key and option, and each pair in it
        Pairs seen;
        for (Id key = -1; key < static_cast<Id>(slow.texts.size()); ++key) {
            const auto tree = lists.find(key);
            Pairs all;
            for (Id option = 0; option < static_cast<Id>(slow.texts.size()); ++option) {
                const auto list = forest.GetConstraintList(key, option);
                ASSERT_EQ(list != nullptr, tree != lists.end());
                if (list == nullptr) {
                    continue;
                }
                const auto found = tree->second.find(option);
                const Pairs pairs = found == tree->second.end() ? Pairs() : found->second;
                ASSERT_EQ(list->Pairs(), pairs);
                ASSERT_EQ(list->Owner(), option);
                all.insert(all.end(), pairs.begin(), pairs.end());
                for (const KeyOption& pair : pairs) {
                    expected.insert(expected.end(), {{key, option}, pair});
                }
            }
            if (tree != lists.end()) {
                ASSERT_EQ(forest.GetConstraintList(key, -1)->Pairs(), all);
            }
        }
        forest.ForEach([&](Id key, Id option, const KeyOption& pair) {
            seen.insert(seen.end(), {{key, option}, pair});
            return true;
        });
        ASSERT_EQ(seen, expected);
    }

    void CompareEngine(ConstraintsEngine& engine) {
        for (int i = 0; i < 6; ++i) {
            const Pairs changes = AnyPairs(3);
            const KVCache changeSet = cacheOf(changes);
            const auto found = engine.Test(changeSet);
            const auto expected = slow.test(changes);
            ASSERT_EQ(pairsOf(found.conflicts), expected.conflicts);
            ASSERT_EQ(pairsOf(found.alternatives), expected.alternatives);
            ASSERT_EQ(engine.HasConflict(changeSet), !expected.conflicts.empty());

            const bool keepChanged = i % 2 == 0;
            KVCache solution = changeSet;
            const auto rest = engine.Solve(solution, keepChanged);
            Pairs expectedSolution = changes;
            oracle::Store::Search search;
            const auto expectedRest = slow.solve(expectedSolution, keepChanged, search);
            ASSERT_EQ(pairsOf(solution), expectedSolution);
            ASSERT_EQ(pairsOf(rest.conflicts), expectedRest.conflicts);
            ASSERT_EQ(pairsOf(rest.alternatives), expectedRest.alternatives);

            const Id key = AnyKey();
            ASSERT_EQ(pairsOf(engine.ListCurrentConstraints(key)), slow.listCurrent(key));
            const Id other = AnyKey();
            const Id excluded = AnyOption();
            ASSERT_EQ(pairsOf(engine.ListBlockingConstraints(other, excluded, key)),
                      slow.listBlocking(other, excluded, key));
            for (const bool exact : {false, true}) {
                ASSERT_EQ(pairsOf(engine.ListScreenedConstraints(changeSet, exact, key)),
                          slow.listScreened(changes, exact, key));
            }
        }
    }

    std::mt19937 random;
    int keyCount = 0;
    int optionCount = 0;
};

#ifdef __SANITIZE_ADDRESS__
constexpr unsigned randomStores = 500; // ten times slower than without
#else
constexpr unsigned randomStores = 3000;
#endif

TEST(RandomStores, AgreeWithTheOracle) {
    for (unsigned seed = 1; seed <= randomStores; ++seed) {
        SCOPED_TRACE(seed);
        Twins twins(seed);
        ASSERT_NO_FATAL_FAILURE(twins.CompareStores());
        ASSERT_NO_FATAL_FAILURE(twins.CompareAnswers());
        if (seed % 2 == 0) {
            ASSERT_NO_FATAL_FAILURE(twins.DisableAndEnable());
            ASSERT_NO_FATAL_FAILURE(twins.CompareAnswers());
        }
    }
}

TEST(KVCache, AgreesWithAPlainSequence) {
    std::mt19937 random(7);
    for (int trial = 0; trial < 300; ++trial) {
        const int keyCount = trial % 3 == 0 ? 4 : 200;
        const bool mayRepeat = trial % 2 == 0;
        KVCache cache;
        Pairs plain;
        const auto below = [&](int limit) { return std::uniform_int_distribution<Id>(0, limit - 1)(random); };
        for (int step = 0; step < 600; ++step) {
            const KeyOption pair{below(keyCount) - 1, below(5) - 1};
            switch (below(mayRepeat ? 9 : 8)) {
            default:
                cache.Insert(pair.key, pair.option);
                oracle::insert(plain, pair.key, pair.option);
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
            const KeyOption* entry = oracle::findKey(plain, asked.key);
            ASSERT_EQ(cache.GetItem(asked.key), entry == nullptr ? -1 : entry->option);
        }
        ASSERT_EQ(pairsOf(cache), plain);
        if (!mayRepeat) {
            ASSERT_FALSE(cache.HasRepeatedKeys());
        }
        std::shuffle(plain.begin(), plain.end(), random);
        ASSERT_TRUE(cache == cacheOf(plain));
        if (!plain.empty()) {
            ++plain.front().option;
            ASSERT_FALSE(cache == cacheOf(plain));
        }
    }
}

} // namespace
} // namespace torka
