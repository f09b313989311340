// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <tuple>
#include <vector>

// A slow and obvious constraint store and engine. It scans plain vectors, expands every wildcard, and
// computes every answer from its definition. The real store and engine must agree with it pair by pair.
namespace torka::oracle {

using Id = std::int64_t;
using Pairs = std::vector<KeyOption>;

inline bool has(const Pairs& pairs, const KeyOption& pair) { return std::ranges::count(pairs, pair) > 0; }

inline KeyOption* findKey(Pairs& pairs, Id key) {
    const auto found = std::ranges::find(pairs, key, &KeyOption::key);
    return found == pairs.end() ? nullptr : &*found;
}

inline void insert(Pairs& pairs, Id key, Id option) {
    if (key < 0) {
        return;
    }
    if (KeyOption* entry = findKey(pairs, key)) {
        entry->option = option;
    } else {
        pairs.push_back({key, option});
    }
}

struct Answer {
    Pairs conflicts;
    Pairs alternatives;
};

struct Store {
    using Lists = std::map<Id, std::map<Id, Pairs>>; // by key, by option

    std::vector<std::string> texts;
    std::map<Id, std::vector<Id>> options;
    Lists constraints;
    Lists requirements;
    std::vector<std::tuple<Id, Id, Id, Id, bool>> deferred;
    Pairs current;
    Pairs locked;

    Id find(const std::string& text) const {
        const auto found = std::ranges::find(texts, text);
        return found == texts.end() ? -1 : found - texts.begin();
    }

    Id intern(const std::string& text) {
        if (find(text) < 0) {
            texts.push_back(text);
        }
        return find(text);
    }

    void record(const std::string& key, const std::string& option) {
        const Id k = intern(key);
        options[k].push_back(intern(option));
    }

    void addLine(const std::string& key1, const std::string& option1, const std::string& key2,
                 const std::string& option2, bool requirement) {
        const Id k1 = intern(key1);
        const Id o1 = intern(option1);
        const Id k2 = intern(key2);
        const Id o2 = intern(option2);
        if (option1.empty() || option2.empty()) {
            deferred.emplace_back(k1, o1, k2, o2, requirement);
        } else {
            (requirement ? requirements : constraints)[k1][o1].push_back({k2, o2});
        }
    }

    void resolve() {
        const Id empty = find("");
        if (empty < 0) {
            return;
        }
        const Id none = intern("None");
        const Id off = intern("False");
        const auto expand = [&](Id key, Id option) {
            if (option != empty) {
                return std::vector{option};
            }
            std::vector<Id> expanded = options[key];
            std::erase(expanded, none);
            std::erase(expanded, off);
            return expanded;
        };
        for (const auto& [key1, option1, key2, option2, requirement] : deferred) {
            for (const Id o1 : expand(key1, option1)) {
                for (const Id o2 : expand(key2, option2)) {
                    (requirement ? requirements : constraints)[key1][o1].push_back({key2, o2});
                }
            }
        }
        deferred.clear();
    }

    Pairs list(Id key, Id option) const {
        Pairs all;
        const auto tree = constraints.find(key);
        if (tree == constraints.end()) {
            return all;
        }
        for (const auto& [each, pairs] : tree->second) {
            if (option == -1 || option == each) {
                all.insert(all.end(), pairs.begin(), pairs.end());
            }
        }
        return all;
    }

    std::vector<Id> optionsOf(Id key) const {
        const auto found = options.find(key);
        return found == options.end() ? std::vector<Id>() : found->second;
    }

    Answer test(const Pairs& changeSet) const {
        Answer answer;
        Pairs merged = current;
        for (const KeyOption& change : changeSet) {
            insert(merged, change.key, change.option);
        }
        for (const KeyOption& change : changeSet) {
            Pairs constrained = list(change.key, change.option);
            std::ranges::reverse(constrained);
            for (const KeyOption& candidate : constrained) {
                if (!has(merged, candidate)) {
                    continue;
                }
                answer.conflicts.push_back(candidate);
                std::vector<Id> others = optionsOf(candidate.key);
                std::ranges::reverse(others);
                for (const Id other : others) {
                    if (other != candidate.option && !has(constrained, {candidate.key, other})) {
                        answer.alternatives.push_back({candidate.key, other});
                    }
                }
            }
        }
        return answer;
    }

    Pairs testLocked(Pairs& alternatives) {
        Pairs hits;
        Pairs kept;
        for (const KeyOption& pair : alternatives) {
            if (has(locked, {pair.key, -1}) || has(locked, pair)) {
                const KeyOption* now = findKey(current, pair.key);
                insert(hits, pair.key, now == nullptr ? -1 : now->option);
            } else {
                kept.push_back(pair);
            }
        }
        alternatives = kept;
        return hits;
    }

    struct Search {
        std::deque<Pairs> queue;
        std::vector<Pairs> visited;
        bool overflowed = false;
        int depth = 0;
    };

    Answer solve(Pairs& changeSet, bool keepChanged, Search& search) {
        ++search.depth;
        Answer answer = test(changeSet);
        if (answer.conflicts.empty() || search.depth >= 129) {
            return answer;
        }
        const Pairs hits = testLocked(answer.alternatives);
        if (search.depth == 1 && !hits.empty()) {
            return {hits, {}};
        }
        for (const KeyOption& next : answer.alternatives) {
            if (keepChanged && findKey(changeSet, next.key) != nullptr) {
                continue;
            }
            insert(changeSet, next.key, next.option);
            const Answer step = test(changeSet);
            if (step.conflicts.empty()) {
                return step;
            }
            const auto same = [&](const Pairs& state) {
                return std::ranges::is_permutation(state, changeSet);
            };
            if (search.overflowed || std::ranges::any_of(search.visited, same)) {
                continue;
            }
            search.queue.push_back(changeSet);
            search.overflowed = search.queue.size() > 128;
        }
        if (search.queue.empty()) {
            return {answer.conflicts, {}};
        }
        search.visited.insert(search.visited.begin(), search.queue.front());
        changeSet = search.queue.front();
        search.queue.pop_front();
        return solve(changeSet, keepChanged, search);
    }
};

} // namespace torka::oracle
