#include "PPDX/KVEngine/KeyConstraintTree.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace torka {

void KeyConstraintTree::insert(std::int64_t option, const KeyOption& pair) {
    if (lines.empty()) {
        active.FindOrMake(option, option).insert(pair);
        return;
    }
    oneOptionLines[option].push_back(lines.size());
    lines.push_back({nullptr, nullptr, option, pair});
}

void KeyConstraintTree::InsertWildcard(std::shared_ptr<const OptionRange> from, std::int64_t option,
                                       std::shared_ptr<const OptionRange> to, const KeyOption& pair) {
    (from != nullptr ? manyOptionLines : oneOptionLines[option]).push_back(lines.size());
    lines.push_back({std::move(from), std::move(to), option, pair});
}

std::unique_ptr<ItemConstraintList> KeyConstraintTree::GetItemConstraintList(std::int64_t option) const {
    auto list = std::make_unique<ItemConstraintList>(option);
    std::vector<ConstraintRun> runs;
    for (const std::int64_t each : option == -1 ? ActiveOptions() : std::vector{option}) {
        runs.clear();
        CollectRuns(each, runs);
        for (const ConstraintRun& run : runs)
            run.ForEach([&](const KeyOption& pair) {
                list->insert(pair);
                return true;
            });
    }
    return list;
}

void KeyConstraintTree::CollectRuns(std::int64_t option, std::vector<ConstraintRun>& runs) const {
    if (const ItemConstraintList* own = active.Find(option); own != nullptr && own->size() > 0)
        runs.push_back({own->Pairs()});
    if (lines.empty())
        return;

    static const std::vector<std::size_t> noLines;
    const auto single = oneOptionLines.find(option);
    const std::vector<std::size_t>& one = single == oneOptionLines.end() ? noLines : single->second;
    const auto written = writtenOut.find(option);
    const std::size_t start = written == writtenOut.end() ? 0 : written->second;
    auto nextOne = std::lower_bound(one.begin(), one.end(), start);
    auto nextMany = std::lower_bound(manyOptionLines.begin(), manyOptionLines.end(), start);
    while (nextOne != one.end() || nextMany != manyOptionLines.end()) {
        if (nextMany == manyOptionLines.end() || (nextOne != one.end() && *nextOne < *nextMany)) {
            runs.push_back(RunOf(lines[*nextOne++], 1));
        } else {
            const Line& line = lines[*nextMany++];
            if (const std::size_t repeat = line.from->Occurrences(option); repeat > 0)
                runs.push_back(RunOf(line, repeat));
        }
    }
}

void KeyConstraintTree::CollectAllRuns(std::vector<ConstraintRun>& runs) const {
    if (writtenOut.empty()) {
        for (const ItemConstraintList& list : active.Values())
            runs.push_back({list.Pairs()});
        for (const Line& line : lines)
            runs.push_back(RunOf(line, 1));
        return;
    }
    for (const std::int64_t option : ActiveOptions())
        CollectRuns(option, runs);
}

std::vector<std::int64_t> KeyConstraintTree::ActiveOptions() const {
    std::vector<std::int64_t> options = active.Ids();
    for (const auto& [option, list] : oneOptionLines)
        options.push_back(option);
    const OptionRange* last = nullptr;
    for (const std::size_t i : manyOptionLines) {
        const OptionRange* range = lines[i].from.get();
        if (range == std::exchange(last, range))
            continue; // lines resolved together share their range
        for (const std::int64_t option : range->Items())
            if (!range->Skips(option))
                options.push_back(option);
    }
    std::sort(options.begin(), options.end());
    options.erase(std::unique(options.begin(), options.end()), options.end());
    return options;
}

std::vector<KeyOption> KeyConstraintTree::DisableConstraints(std::int64_t option, std::int64_t key2,
                                                             std::int64_t option2) {
    std::vector<KeyOption> removed;
    for (const std::int64_t each : option == -1 ? ActiveOptions() : std::vector{option}) {
        if (!HasList(each))
            continue;
        ItemConstraintList& list = WriteOut(each);
        setAside.try_emplace(each, list);
        std::vector<KeyOption> kept;
        for (const KeyOption& pair : list.Pairs()) {
            const bool named = pair.key == key2 && (option2 == -1 || pair.option == option2);
            (named ? removed : kept).push_back(pair);
        }
        list.Replace(std::move(kept));
    }
    return removed;
}

std::vector<KeyOption> KeyConstraintTree::EnableConstraints(std::int64_t option) {
    std::vector<KeyOption> restored;
    auto next = option == -1 ? setAside.begin() : setAside.find(option);
    const auto end = option == -1 || next == setAside.end() ? setAside.end() : std::next(next);
    while (next != end) {
        const auto aside = next++;
        ItemConstraintList& list = WriteOut(aside->first);
        // What is active is what was set aside with pairs left out, so one walk over both finds those.
        auto present = list.Pairs().begin();
        for (const KeyOption& pair : aside->second.Pairs()) {
            if (present != list.Pairs().end() && *present == pair)
                ++present;
            else
                restored.push_back(pair);
        }
        list = std::move(aside->second);
        setAside.erase(aside);
    }
    return restored;
}

ConstraintRun KeyConstraintTree::RunOf(const Line& line, std::size_t repeat) {
    if (line.to != nullptr)
        return {{}, line.to.get(), line.pair.key, repeat};
    return {std::span(&line.pair, 1), nullptr, -1, repeat};
}

bool KeyConstraintTree::HasList(std::int64_t option) const {
    std::vector<ConstraintRun> runs;
    CollectRuns(option, runs);
    return !runs.empty() || active.Find(option) != nullptr;
}

// Turns the lines that apply to the option into pairs of its own list.
ItemConstraintList& KeyConstraintTree::WriteOut(std::int64_t option) {
    std::vector<ConstraintRun> runs;
    CollectRuns(option, runs);
    std::vector<KeyOption> pairs;
    for (const ConstraintRun& run : runs)
        run.ForEach([&](const KeyOption& pair) {
            pairs.push_back(pair);
            return true;
        });
    ItemConstraintList& list = active.FindOrMake(option, option);
    list.Replace(std::move(pairs));
    if (!lines.empty())
        writtenOut[option] = lines.size();
    return list;
}

} // namespace torka
