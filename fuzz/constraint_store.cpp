// SPDX-License-Identifier: Apache-2.0
// Fills a constraint store and asks its engine, and compares everything with a slow store, pair by pair.
//
// Input: choices, one byte each. The stores follow each other until the input ends.

#include "PPDX/KVEngine/CStringSoup.h"
#include "PPDX/KVEngine/ConstraintForest.h"
#include "PPDX/KVEngine/ConstraintsEngine.h"
#include "PPDX/KVEngine/KeyForest.h"
#include "PPDX/KVEngine/UIConstraints.h"
#include "fuzz/ConstraintOracle.h"
#include "fuzz/Fuzzing.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace {

using namespace torka;
using fuzz::require;
using oracle::Id;
using oracle::Pairs;

class Dice {
public:
    Dice(const std::uint8_t* data, std::size_t size)
        : bytes(data, size) {}
    bool IsAtEnd() const { return bytes.empty(); }
    int Below(int limit) {
        const int value = bytes.empty() ? 0 : bytes.front();
        bytes = bytes.subspan(bytes.empty() ? 0 : 1);
        return value % limit;
    }

private:
    std::span<const std::uint8_t> bytes;
};

Pairs pairsOf(const KVCache& cache) { return {cache.Pairs().begin(), cache.Pairs().end()}; }

KVCache cacheOf(const Pairs& pairs) {
    KVCache cache;
    for (const KeyOption& pair : pairs) {
        cache.add(pair);
    }
    return cache;
}

// A small store and its oracle. It has few keys and options, so that constraints interact often.
class Twins {
public:
    explicit Twins(Dice& input)
        : dice(input) {
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

    int Below(int limit) { return dice.Below(limit); }
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
        require(fast.GetConstraintStrings()->size() == slow.texts.size());
        for (std::size_t i = 0; i < slow.texts.size(); ++i) {
            require(fast.GetConstraintStrings()->Find(static_cast<Id>(i)) == slow.texts[i]);
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
        require(pairsOf(*keys) == expected);
    }

    void CompareAnswers() {
        for (int key = 0; key < keyCount + 1; ++key) {
            for (int option = 0; option < optionCount + 3; ++option) {
                const std::string k = "*K" + std::to_string(key);
                const std::string o = OptionNamed(option);
                Pairs change;
                oracle::insert(change, slow.find(k), slow.find(o));
                require(fast.IsKVConstrained(k, o) == !slow.test(change).conflicts.empty());
            }
        }
        require(fast.GetConstraintStrings()->size() == slow.texts.size());
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
                require((list != nullptr) == (tree != lists.end()));
                if (list == nullptr) {
                    continue;
                }
                const auto found = tree->second.find(option);
                const Pairs pairs = found == tree->second.end() ? Pairs() : found->second;
                require(list->Pairs() == pairs);
                require(list->Owner() == option);
                all.insert(all.end(), pairs.begin(), pairs.end());
                for (const KeyOption& pair : pairs) {
                    expected.insert(expected.end(), {{key, option}, pair});
                }
            }
            if (tree != lists.end()) {
                require(forest.GetConstraintList(key, -1)->Pairs() == all);
            }
        }
        forest.ForEach([&](Id key, Id option, const KeyOption& pair) {
            seen.insert(seen.end(), {{key, option}, pair});
            return true;
        });
        require(seen == expected);
    }

    void CompareEngine(ConstraintsEngine& engine) {
        for (int i = 0; i < 6; ++i) {
            const Pairs changes = AnyPairs(3);
            const KVCache changeSet = cacheOf(changes);
            const auto found = engine.Test(changeSet);
            const auto expected = slow.test(changes);
            require(pairsOf(found.conflicts) == expected.conflicts);
            require(pairsOf(found.alternatives) == expected.alternatives);
            require(engine.HasConflict(changeSet) == !expected.conflicts.empty());

            const bool keepChanged = i % 2 == 0;
            KVCache solution = changeSet;
            const auto rest = engine.Solve(solution, keepChanged);
            Pairs expectedSolution = changes;
            oracle::Store::Search search;
            const auto expectedRest = slow.solve(expectedSolution, keepChanged, search);
            require(pairsOf(solution) == expectedSolution);
            require(pairsOf(rest.conflicts) == expectedRest.conflicts);
            require(pairsOf(rest.alternatives) == expectedRest.alternatives);
        }
    }

    Dice& dice;
    int keyCount = 0;
    int optionCount = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (Dice dice(data, size); !dice.IsAtEnd();) {
        Twins twins(dice);
        twins.CompareStores();
        twins.CompareAnswers();
    }
    return 0;
}
