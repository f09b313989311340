// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/KeyForest.h"

#include "PPDX/KVEngine/KVCache.h"

#include <algorithm>
#include <numeric>

namespace torka {

namespace {

constexpr std::size_t shortList = 32; // up to here, scanning is as fast as searching
constexpr std::size_t insertedOneByOne = 16;

} // namespace

std::size_t KeyOptions::Occurrences(std::int64_t option, std::size_t limit) const {
    limit = std::min(limit, items.size());
    if (items.size() <= shortList) {
        const auto end = items.begin() + static_cast<std::ptrdiff_t>(limit);
        return static_cast<std::size_t>(std::count(items.begin(), end, option));
    }
    SortNewItems();
    const auto first = std::partition_point(sorted.begin(), sorted.end(),
                                            [&](std::uint32_t i) { return items[i] < option; });
    const auto last = std::partition_point(first, sorted.end(),
                                           [&](std::uint32_t i) { return items[i] == option && i < limit; });
    return static_cast<std::size_t>(last - first);
}

void KeyOptions::SortNewItems() const {
    const std::size_t known = sorted.size();
    if (known == items.size()) {
        return;
    }
    const auto before = [this](std::uint32_t a, std::uint32_t b) {
        return items[a] != items[b] ? items[a] < items[b] : a < b;
    };
    if (items.size() - known <= insertedOneByOne) {
        for (auto i = static_cast<std::uint32_t>(known); i < items.size(); ++i) {
            sorted.insert(std::upper_bound(sorted.begin(), sorted.end(), i, before), i);
        }
        return;
    }
    sorted.resize(items.size());
    std::iota(sorted.begin(), sorted.end(), 0U);
    std::sort(sorted.begin(), sorted.end(), before);
}

void KeyForest::insert(std::int64_t key, std::span<const std::int64_t> options) {
    if (options.empty()) {
        return;
    }
    std::shared_ptr<KeyOptions>& known = keys.FindOrMake(key);
    if (known == nullptr) {
        known = std::make_shared<KeyOptions>();
    }
    known->Append(options);
}

const std::vector<std::int64_t>* KeyForest::GetItems(std::int64_t key) const {
    const auto* found = keys.Find(key);
    return found == nullptr ? nullptr : &(*found)->Items();
}

std::shared_ptr<const KeyOptions> KeyForest::GetOptions(std::int64_t key) const {
    const auto* found = keys.Find(key);
    return found == nullptr ? nullptr : *found;
}

void KeyForest::GetKeys(std::unique_ptr<KVCache>& out) const {
    if (out == nullptr) {
        out = std::make_unique<KVCache>();
    } else {
        out->clear();
    }
    std::vector<std::int64_t> ascending = keys.Ids();
    std::sort(ascending.begin(), ascending.end());
    for (const std::int64_t key : ascending) {
        for (const std::int64_t option : *GetItems(key)) {
            out->add({key, option});
        }
    }
}

} // namespace torka
