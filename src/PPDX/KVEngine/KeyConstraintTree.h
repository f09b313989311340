// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/ConstraintRun.h"
#include "PPDX/KVEngine/ItemConstraintList.h"
#include "PPDX/KVEngine/WildcardLines.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace torka {

// Everything that the options of one key constrain: a list per option. ConstraintForest owns the trees.
//
// Most keys only have an array of lines. Lines that omit an option are stored beside it, once each; the lists
// that contain them are assembled on request. Only disabling writes out such lists, one option at a time.
//
// Each key has an array of its own. With one large array for all keys, 20,000 lines take 6.0 ms in a warm
// process instead of 2.2 ms: the allocator returns the pages of a large array after each description, and the
// next one faults them in again.
//
// Invariants, between Settle and the next Add:
// (1) The array ascends by option, and within one option by line order.
// (2) An option's list begins with its lines of the array or, once written out, with the pairs of the
// written-out list. The wildcard lines follow that apply to the option and are not written out yet.
// (3) After the first wildcard line, every later line becomes one too. This keeps the order of insertion.
class KeyConstraintTree {
public:
    explicit KeyConstraintTree(std::int64_t key)
        : constrainingKey(key) {}
    virtual ~KeyConstraintTree() = default;
    KeyConstraintTree(KeyConstraintTree&&) noexcept = default;
    KeyConstraintTree& operator=(KeyConstraintTree&&) noexcept = default;

    // Adds a line. REQUIRES: Settle before the next other call.
    void Add(const ConstraintRecord& line) {
        if (lines.empty()) {
            lines.reserve(usualLines);
        }
        lines.push_back(line);
    }
    // Brings the lines added since the last call into their places.
    void Settle();
    // Appends a line with an empty option; see WildcardLines::Add.
    void InsertWildcard(std::shared_ptr<const OptionRange> from, std::shared_ptr<const OptionRange> to,
                        const ConstraintRecord& line);

    // Appends the runs of one option's list (not -1) in order, without expanding them.
    void CollectRuns(std::int64_t option, std::vector<ConstraintRun>& runs) const;
    // Appends runs that hold every pair of every option's list at least once, in no order.
    void CollectAllRuns(std::vector<ConstraintRun>& runs) const;
    // Returns the options that have a list, ascending.
    std::vector<std::int64_t> ActiveOptions() const;

    // Tells whether hit(run) accepts a run of the option's list, or of any list for -1. Visits equal wildcard
    // lines once and stops at the first hit. Adds the number of visited lines to `looked`.
    template <typename Hit>
    bool AnyRun(std::int64_t option, Hit hit, std::uint64_t& looked) const;

    // Given interface; no caller here
    // Returns a new list of what the option constrains. -1 means every option, options ascending.
    std::unique_ptr<ItemConstraintList> GetItemConstraintList(std::int64_t option) const;
    // Saves a copy of the option's list (-1: of every option) unless one is saved already. Then removes from
    // the active list the pairs of key2 with option2 (-1: with any option). Returns the removed pairs.
    std::vector<KeyOption> DisableConstraints(std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Makes the saved lists active again. Returns the pairs that this restores.
    std::vector<KeyOption> EnableConstraints(std::int64_t option);

private:
    static constexpr std::size_t usualLines = 8;
    using Records = std::vector<ConstraintRecord>;
    struct WrittenList {
        Records pairs;
        std::size_t wildcards = 0; // number of wildcard lines among the pairs
    };
    struct Extras {
        WildcardLines wildcards;
        std::map<std::int64_t, WrittenList> written; // by option
        std::map<std::int64_t, Records> setAside;
    };

    bool TakeLater(const ConstraintRecord& line);
    Extras& More();
    const WrittenList* Written(std::int64_t option) const;
    std::span<const ConstraintRecord> OwnLines(std::int64_t option) const;
    bool HasList(std::int64_t option) const;
    Records& WriteOut(std::int64_t option);

    std::int64_t constrainingKey;
    Records lines;
    std::size_t settled = 0;        // the number of lines that are in their places
    std::unique_ptr<Extras> extras; // null for most keys
};

template <typename Hit>
bool KeyConstraintTree::AnyRun(std::int64_t option, Hit hit, std::uint64_t& looked) const {
    ++looked;
    if (option == -1) {
        std::vector<ConstraintRun> all;
        CollectAllRuns(all);
        for (const ConstraintRun& run : all) {
            looked += run.lines.size() + 1;
            if (hit(run)) {
                return true;
            }
        }
        return false;
    }
    const std::span<const ConstraintRecord> own = OwnLines(option);
    looked += own.size();
    if (!own.empty() && hit(ConstraintRun{own})) {
        return true;
    }
    if (extras == nullptr) {
        return false;
    }
    const WrittenList* written = Written(option);
    return extras->wildcards.AnyRun(option, written == nullptr ? 0 : written->wildcards, hit, looked);
}

} // namespace torka
