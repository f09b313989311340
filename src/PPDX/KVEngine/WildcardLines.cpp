// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/WildcardLines.h"

#include <algorithm>
#include <utility>

namespace torka {

namespace {

std::uint64_t mix(std::uint64_t hash, std::uint64_t part) {
    return hashIdentifier(static_cast<std::int64_t>(hash ^ part));
}

std::uint64_t hashLine(const OptionRange* from, const OptionRange* to, const ConstraintRecord& line) {
    std::uint64_t hash = mix(reinterpret_cast<std::uintptr_t>(from), (std::uint64_t{line.key2} << 32U));
    hash = mix(hash, reinterpret_cast<std::uintptr_t>(to));
    return mix(hash, (std::uint64_t{line.option1} << 32U) | line.option2);
}

} // namespace

void WildcardLines::Add(std::shared_ptr<const OptionRange> from, std::shared_ptr<const OptionRange> to,
                        const ConstraintRecord& line) {
    const auto isSame = [&](std::uint32_t i) {
        const Kind& kind = kinds[i];
        return kind.from == from && kind.to == to && kind.line.option1 == line.option1 &&
               kind.line.key2 == line.key2 && kind.line.option2 == line.option2;
    };
    const std::uint64_t hash = hashLine(from.get(), to.get(), line);
    Sequence& sequence = from != nullptr ? manyOptionLines : oneOptionLines[line.option1];
    std::uint32_t kind = index.Find(hash, isSame);
    if (kind == PositionTable::none) {
        kind = static_cast<std::uint32_t>(kinds.size());
        if (index.Full()) {
            index.Grow([this](std::uint32_t i) {
                return hashLine(kinds[i].from.get(), kinds[i].to.get(), kinds[i].line);
            });
        }
        index.Add(hash, kind);
        kinds.push_back({std::move(from), std::move(to), line});
        sequence.kinds.push_back(kind);
    }
    sequence.entries.push_back({count++, kind});
}

void WildcardLines::CollectRuns(std::int64_t option, std::size_t first,
                                std::vector<ConstraintRun>& runs) const {
    const std::vector<Entry>& one = OneOptionLines(option).entries;
    const std::vector<Entry>& many = manyOptionLines.entries;
    const auto isBefore = [](const Entry& entry, std::size_t number) { return entry.number < number; };
    auto nextOne = std::lower_bound(one.begin(), one.end(), first, isBefore);
    auto nextMany = std::lower_bound(many.begin(), many.end(), first, isBefore);
    LastRange last;
    while (nextOne != one.end() || nextMany != many.end()) {
        if (nextMany == many.end() || (nextOne != one.end() && nextOne->number < nextMany->number)) {
            runs.push_back(RunOf((nextOne++)->kind, 1));
        } else {
            const std::uint32_t kind = (nextMany++)->kind;
            if (const std::size_t repeat = last.Occurrences(kinds[kind].from.get(), option); repeat > 0) {
                runs.push_back(RunOf(kind, repeat));
            }
        }
    }
}

void WildcardLines::CollectDistinctRuns(std::vector<ConstraintRun>& runs) const {
    for (std::uint32_t kind = 0; kind < kinds.size(); ++kind) {
        runs.push_back(RunOf(kind, 1));
    }
}

void WildcardLines::CollectOptions(std::vector<std::int64_t>& options) const {
    for (const auto& [option, sequence] : oneOptionLines) {
        options.push_back(option);
    }
    const OptionRange* last = nullptr;
    for (const std::uint32_t kind : manyOptionLines.kinds) {
        const OptionRange* range = kinds[kind].from.get();
        if (range == std::exchange(last, range)) {
            continue;
        }
        for (const std::int64_t option : range->Items()) {
            if (!range->Skips(option)) {
                options.push_back(option);
            }
        }
    }
}

ConstraintRun WildcardLines::RunOf(std::uint32_t kind, std::size_t repeat) const {
    const Kind& line = kinds[kind];
    if (line.to != nullptr) {
        return {{}, line.to.get(), line.line.key2, repeat};
    }
    return {std::span(&line.line, 1), nullptr, -1, repeat};
}

const WildcardLines::Sequence& WildcardLines::OneOptionLines(std::int64_t option) const {
    static const Sequence none;
    const auto found = oneOptionLines.find(option);
    return found == oneOptionLines.end() ? none : found->second;
}

} // namespace torka
