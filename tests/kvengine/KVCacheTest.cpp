// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/KVCache.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace torka {
namespace {

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

} // namespace
} // namespace torka
