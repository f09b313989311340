// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/ConstraintRun.h"
#include "PPDX/KVEngine/PositionTable.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace torka {

// The lines of one constraining key that omit an option, and all lines after the first of them. Lines are
// stored without expanding them; of equal lines only the first is stored whole.
//
// Lines are numbered from 0 in the order of insertion.
class WildcardLines {
public:
    // `from` is the range of constraining options, or null when line.option1 is the only one. `to` is the
    // range of key2's constrained options, or null when line.option2 is the only one. Neither may be empty.
    void Add(std::shared_ptr<const OptionRange> from, std::shared_ptr<const OptionRange> to,
             const ConstraintRecord& line);
    // Returns the number of lines, equal ones included.
    std::size_t size() const { return count; }

    // Appends the runs of the lines from number `first` on that apply to the option, in order.
    void CollectRuns(std::int64_t option, std::size_t first, std::vector<ConstraintRun>& runs) const;
    // Appends one run of each different line, for any option.
    void CollectDistinctRuns(std::vector<ConstraintRun>& runs) const;
    // Appends every option to which a line applies, in no order; options may repeat.
    void CollectOptions(std::vector<std::int64_t>& options) const;

    // Tells whether hit(run) accepts a run of one of those lines. Tests each different line at most once and
    // stops at the first hit. Adds the number of visited lines to `looked`.
    template <typename Hit>
    bool AnyRun(std::int64_t option, std::size_t first, Hit hit, std::uint64_t& looked) const;

private:
    struct Kind {
        std::shared_ptr<const OptionRange> from;
        std::shared_ptr<const OptionRange> to;
        ConstraintRecord line;
    };
    struct Entry {
        std::uint32_t number;
        std::uint32_t kind; // index into kinds
    };
    struct Sequence {
        std::vector<Entry> entries;       // ascending by number
        std::vector<std::uint32_t> kinds; // of the entries, each once
    };
    // The last range asked and its answer: lines that were resolved together share their range.
    struct LastRange {
        const OptionRange* range = nullptr;
        std::size_t occurrences = 0;

        std::size_t Occurrences(const OptionRange* asked, std::int64_t option) {
            if (asked != range) {
                range = asked;
                occurrences = asked->Occurrences(option);
            }
            return occurrences;
        }
    };

    ConstraintRun RunOf(std::uint32_t kind, std::size_t repeat) const;
    const Sequence& OneOptionLines(std::int64_t option) const;
    template <typename Hit>
    bool AnyOf(const std::vector<std::uint32_t>& asked, std::int64_t option, Hit hit,
               std::uint64_t& looked) const;

    std::vector<Kind> kinds;
    PositionTable index; // of kinds
    Sequence manyOptionLines;
    std::unordered_map<std::int64_t, Sequence> oneOptionLines; // by option
    std::uint32_t count = 0;
};

template <typename Hit>
bool WildcardLines::AnyRun(std::int64_t option, std::size_t first, Hit hit, std::uint64_t& looked) const {
    if (first == 0) {
        return AnyOf(OneOptionLines(option).kinds, option, hit, looked) ||
               AnyOf(manyOptionLines.kinds, option, hit, looked);
    }
    // Only lines that came after the option's list was written out. They are few, because lists are written
    // out when the store is complete.
    std::vector<ConstraintRun> runs;
    CollectRuns(option, first, runs);
    looked += runs.size();
    for (const ConstraintRun& run : runs) {
        if (hit(run)) {
            return true;
        }
    }
    return false;
}

template <typename Hit>
bool WildcardLines::AnyOf(const std::vector<std::uint32_t>& asked, std::int64_t option, Hit hit,
                          std::uint64_t& looked) const {
    LastRange last;
    for (const std::uint32_t kind : asked) {
        ++looked;
        const OptionRange* from = kinds[kind].from.get();
        if ((from == nullptr || last.Occurrences(from, option) > 0) && hit(RunOf(kind, 1))) {
            return true;
        }
    }
    return false;
}

} // namespace torka
