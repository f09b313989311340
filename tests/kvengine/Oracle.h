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

inline bool has(const Pairs& pairs, const KeyOption& pair) {
    return std::find(pairs.begin(), pairs.end(), pair) != pairs.end();
}

inline KeyOption* findKey(Pairs& pairs, Id key) {
    for (KeyOption& pair : pairs) {
        if (pair.key == key) {
            return &pair;
        }
    }
    return nullptr;
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

inline bool sameSet(Pairs a, Pairs b) {
    std::sort(a.begin(), a.end(), KeyOptionGreater);
    std::sort(b.begin(), b.end(), KeyOptionGreater);
    return a == b;
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
    Lists setAside; // of constraints
    std::vector<std::tuple<Id, Id, Id, Id, bool>> deferred;
    Pairs current;
    Pairs locked;

    Id find(const std::string& text) const {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            if (texts[i] == text) {
                return static_cast<Id>(i);
            }
        }
        return -1;
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
            std::vector<Id> expanded;
            if (option != empty) {
                return std::vector{option};
            }
            for (const Id each : options[key]) {
                if (each != none && each != off) {
                    expanded.push_back(each);
                }
            }
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
            Pairs candidates = list(change.key, change.option);
            const Pairs constrained = candidates;
            for (; !candidates.empty(); candidates.pop_back()) {
                const KeyOption candidate = candidates.back();
                if (!has(merged, candidate)) {
                    continue;
                }
                answer.conflicts.push_back(candidate);
                std::vector<Id> others = optionsOf(candidate.key);
                for (; !others.empty(); others.pop_back()) {
                    if (others.back() != candidate.option &&
                        !has(constrained, {candidate.key, others.back()})) {
                        answer.alternatives.push_back({candidate.key, others.back()});
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
        while (!answer.alternatives.empty()) {
            const KeyOption next = answer.alternatives.front();
            answer.alternatives.erase(answer.alternatives.begin());
            if (keepChanged && findKey(changeSet, next.key) != nullptr) {
                continue;
            }
            insert(changeSet, next.key, next.option);
            const Answer step = test(changeSet);
            if (step.conflicts.empty()) {
                return step;
            }
            if (search.overflowed) {
                continue;
            }
            const auto same = [&](const Pairs& state) { return sameSet(state, changeSet); };
            if (std::any_of(search.visited.begin(), search.visited.end(), same)) {
                continue;
            }
            search.queue.push_back(changeSet);
            if (search.queue.size() > 128) {
                search.overflowed = true;
            }
        }
        if (search.queue.empty()) {
            return answer;
        }
        search.visited.insert(search.visited.begin(), search.queue.front());
        changeSet = search.queue.front();
        search.queue.pop_front();
        return solve(changeSet, keepChanged, search);
    }

    Pairs listCurrent(Id key) const {
        Pairs listed;
        for (const Id option : optionsOf(key)) {
            const Pairs constrained = list(key, option);
            if (std::any_of(constrained.begin(), constrained.end(),
                            [&](auto& pair) { return has(current, pair); })) {
                listed.push_back({key, option});
            }
        }
        return listed;
    }

    Pairs listBlocking(Id key1, Id excluded, Id key2) const {
        Pairs listed;
        if (key1 < 0 || excluded < 0 || key2 < 0) {
            return listed;
        }
        std::map<Id, int> others;
        for (const Id option : optionsOf(key1)) {
            if (option != excluded) {
                others[option] = 1;
            }
        }
        for (const Id option : optionsOf(key2)) {
            std::map<Id, int> blocked;
            for (const KeyOption& pair : list(key2, option)) {
                if (pair.key == key1) {
                    blocked[pair.option] = 1;
                }
            }
            if (blocked == others) {
                listed.push_back({key2, option});
            }
        }
        return listed;
    }

    Pairs listScreened(const Pairs& selections, bool exact, Id key) const {
        Pairs listed;
        for (const Id option : optionsOf(key)) {
            Pairs gathered;
            for (const KeyOption& pair : list(key, option)) {
                if (has(selections, pair)) {
                    gathered.push_back(pair);
                }
            }
            if (!gathered.empty() && (!exact || sameSet(gathered, selections))) {
                insert(listed, key, option);
            }
        }
        return listed;
    }

    bool disable(Id key, Id option, Id key2, Id option2) {
        bool visited = false;
        for (auto& [treeKey, tree] : constraints) {
            if (key != -1 && key != treeKey) {
                continue;
            }
            visited = true;
            Pairs removed;
            for (auto& [each, pairs] : tree) {
                if (option != -1 && option != each) {
                    continue;
                }
                setAside[treeKey].emplace(each, pairs);
                Pairs kept;
                for (const KeyOption& pair : pairs) {
                    (pair.key == key2 && (option2 == -1 || pair.option == option2) ? removed : kept)
                        .push_back(pair);
                }
                pairs = kept;
            }
            for (const KeyOption& pair : removed) {
                disable(pair.key, pair.option, key2, option2);
            }
        }
        return visited;
    }

    bool enable(Id key, Id option) {
        bool visited = false;
        for (auto& [treeKey, tree] : constraints) {
            if (key != -1 && key != treeKey) {
                continue;
            }
            visited = true;
            Pairs restored;
            for (auto& [each, pairs] : tree) {
                const auto aside = setAside[treeKey].find(each);
                if ((option != -1 && option != each) || aside == setAside[treeKey].end()) {
                    continue;
                }
                for (const KeyOption& pair : aside->second) {
                    if (std::count(pairs.begin(), pairs.end(), pair) <
                        std::count(aside->second.begin(), aside->second.end(), pair)) {
                        restored.push_back(pair);
                    }
                }
                pairs = aside->second;
                setAside[treeKey].erase(aside);
            }
            for (const KeyOption& pair : restored) {
                enable(pair.key, pair.option);
            }
        }
        return visited;
    }
};

} // namespace torka::oracle
