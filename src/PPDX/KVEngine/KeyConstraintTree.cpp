// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/KeyConstraintTree.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <numeric>
#include <utility>

namespace torka {

namespace {

// Sorts by option and keeps the order of equal ones. Most keys have few options, whose identifiers follow one
// another. Counting the lines of each option is then faster than comparing lines.
void sortByOption(std::vector<ConstraintRecord>& lines) {
    const auto [low, high] = std::ranges::minmax(lines, {}, &ConstraintRecord::option1);
    const std::uint32_t first = low.option1;
    const std::uint32_t distance = high.option1 - first;
    std::array<std::uint32_t, 64> places; // of each option's next line; the first one stays 0
    if (distance >= places.size() - 1) {
        std::ranges::stable_sort(lines, {}, &ConstraintRecord::option1);
        return;
    }
    std::fill_n(places.begin(), distance + 2, 0U);
    for (const ConstraintRecord& line : lines) {
        ++places[line.option1 - first + 1];
    }
    std::partial_sum(places.begin(), places.begin() + distance + 1, places.begin());
    std::vector<ConstraintRecord> sorted(lines.size());
    for (const ConstraintRecord& line : lines) {
        sorted[places[line.option1 - first]++] = line;
    }
    lines = std::move(sorted);
}

} // namespace

void KeyConstraintTree::Settle() {
    if (settled == lines.size()) {
        return;
    }
    if (extras != nullptr) {
        const auto fresh = lines.begin() + static_cast<std::ptrdiff_t>(settled);
        const auto isTaken = [this](const ConstraintRecord& line) { return TakeLater(line); };
        lines.erase(std::remove_if(fresh, lines.end(), isTaken), lines.end());
    }
    if (!std::ranges::is_sorted(lines, {}, &ConstraintRecord::option1)) {
        sortByOption(lines);
    }
    settled = lines.size();
}

// Takes a line that must follow the tree's wildcard or written-out lines. Returns false when there are none;
// the line then belongs to the array. REQUIRES: extras.
bool KeyConstraintTree::TakeLater(const ConstraintRecord& line) {
    if (extras->wildcards.size() > 0) {
        extras->wildcards.Add(nullptr, nullptr, line);
        return true;
    }
    const auto written = extras->written.find(line.option1);
    if (written == extras->written.end()) {
        return false;
    }
    written->second.pairs.push_back(line);
    return true;
}

void KeyConstraintTree::InsertWildcard(std::shared_ptr<const OptionRange> from,
                                       std::shared_ptr<const OptionRange> to, const ConstraintRecord& line) {
    More().wildcards.Add(std::move(from), std::move(to), line);
}

std::unique_ptr<ItemConstraintList> KeyConstraintTree::GetItemConstraintList(std::int64_t option) const {
    auto list = std::make_unique<ItemConstraintList>(option);
    std::vector<ConstraintRun> runs;
    for (const std::int64_t each : option == -1 ? ActiveOptions() : std::vector{option}) {
        runs.clear();
        CollectRuns(each, runs);
        for (const ConstraintRun& run : runs) {
            run.ForEach([&](const KeyOption& pair) {
                list->insert(pair);
                return true;
            });
        }
    }
    return list;
}

void KeyConstraintTree::CollectRuns(std::int64_t option, std::vector<ConstraintRun>& runs) const {
    if (const auto own = OwnLines(option); !own.empty()) {
        runs.push_back({own});
    }
    if (extras != nullptr) {
        const WrittenList* written = Written(option);
        extras->wildcards.CollectRuns(option, written == nullptr ? 0 : written->wildcards, runs);
    }
}

void KeyConstraintTree::CollectAllRuns(std::vector<ConstraintRun>& runs) const {
    if (extras == nullptr || extras->written.empty()) {
        runs.push_back({std::span(lines)});
        if (extras != nullptr) {
            extras->wildcards.CollectDistinctRuns(runs);
        }
        return;
    }
    for (const std::int64_t option : ActiveOptions()) {
        CollectRuns(option, runs);
    }
}

std::vector<std::int64_t> KeyConstraintTree::ActiveOptions() const {
    std::vector<std::int64_t> options;
    for (const ConstraintRecord& line : lines) {
        if (options.empty() || options.back() != line.option1) {
            options.push_back(line.option1);
        }
    }
    if (extras == nullptr) {
        return options;
    }
    for (const auto& [option, list] : extras->written) {
        options.push_back(option);
    }
    extras->wildcards.CollectOptions(options);
    std::sort(options.begin(), options.end());
    options.erase(std::unique(options.begin(), options.end()), options.end());
    return options;
}

std::vector<KeyOption> KeyConstraintTree::DisableConstraints(std::int64_t option, std::int64_t key2,
                                                             std::int64_t option2) {
    std::vector<KeyOption> removed;
    for (const std::int64_t each : option == -1 ? ActiveOptions() : std::vector{option}) {
        if (!HasList(each)) {
            continue;
        }
        Records& pairs = WriteOut(each);
        extras->setAside.try_emplace(each, pairs);
        std::erase_if(pairs, [&](const ConstraintRecord& line) {
            const KeyOption pair = line.Constrained();
            const bool isNamed = pair.key == key2 && (option2 == -1 || pair.option == option2);
            if (isNamed) {
                removed.push_back(pair);
            }
            return isNamed;
        });
    }
    return removed;
}

std::vector<KeyOption> KeyConstraintTree::EnableConstraints(std::int64_t option) {
    std::vector<KeyOption> restored;
    if (extras == nullptr) {
        return restored;
    }
    auto next = option == -1 ? extras->setAside.begin() : extras->setAside.find(option);
    const auto end =
        option == -1 || next == extras->setAside.end() ? extras->setAside.end() : std::next(next);
    while (next != end) {
        const auto aside = next++;
        Records& pairs = WriteOut(aside->first);
        // The active list is the saved one without some pairs, so one pass over both finds those pairs.
        auto present = pairs.begin();
        for (const ConstraintRecord& line : aside->second) {
            if (present != pairs.end() && present->Constrained() == line.Constrained()) {
                ++present;
            } else {
                restored.push_back(line.Constrained());
            }
        }
        pairs = std::move(aside->second);
        extras->setAside.erase(aside);
    }
    return restored;
}

KeyConstraintTree::Extras& KeyConstraintTree::More() {
    if (extras == nullptr) {
        extras = std::make_unique<Extras>();
    }
    return *extras;
}

const KeyConstraintTree::WrittenList* KeyConstraintTree::Written(std::int64_t option) const {
    if (extras == nullptr) {
        return nullptr;
    }
    const auto found = extras->written.find(option);
    return found == extras->written.end() ? nullptr : &found->second;
}

std::span<const ConstraintRecord> KeyConstraintTree::OwnLines(std::int64_t option) const {
    if (const WrittenList* written = Written(option)) {
        return written->pairs;
    }
    const auto optionOf = [](const ConstraintRecord& line) { return std::int64_t{line.option1}; };
    const auto first = std::ranges::lower_bound(lines, option, {}, optionOf);
    return {first, std::ranges::upper_bound(first, lines.end(), option, {}, optionOf)};
}

bool KeyConstraintTree::HasList(std::int64_t option) const {
    std::vector<ConstraintRun> runs;
    CollectRuns(option, runs);
    return !runs.empty() || Written(option) != nullptr;
}

// Writes the assembled list of the option out as a list of its own.
KeyConstraintTree::Records& KeyConstraintTree::WriteOut(std::int64_t option) {
    std::vector<ConstraintRun> runs;
    CollectRuns(option, runs);
    Records pairs;
    for (const ConstraintRun& run : runs) {
        run.ForEach([&](const KeyOption& pair) {
            pairs.push_back({static_cast<std::uint32_t>(constrainingKey), static_cast<std::uint32_t>(option),
                             static_cast<std::uint32_t>(pair.key), static_cast<std::uint32_t>(pair.option)});
            return true;
        });
    }
    WrittenList& list = More().written[option];
    list = {std::move(pairs), extras->wildcards.size()};
    return list.pairs;
}

} // namespace torka
