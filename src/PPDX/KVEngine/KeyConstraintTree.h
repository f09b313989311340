#pragma once

#include "PPDX/KVEngine/ConstraintRun.h"
#include "PPDX/KVEngine/ItemConstraintList.h"
#include "PPDX/KVEngine/WildcardLines.h"

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <vector>

namespace torka {

// All that the options of one key constrain: a list per option. ConstraintForest owns the trees and the lines
// that they point to.
//
// Most keys have nothing but a stretch of the forest's array of lines. Lines that leave out an option are
// kept beside it, once each; the lists that they belong to are put together when they are asked for. Only
// disabling writes such lists out, one option at a time.
//
// Invariants:
// (1) The stretch is ascending by option and within one option in line order.
// (2) Of an option's list come first its lines of the stretch, or, once written out, the pairs of the
//     written-out list; then the wildcard lines that apply to it and are not written out yet.
// (3) Once there is a wildcard line, what comes later becomes one too, so that the order of insertion is
//     kept.
class KeyConstraintTree {
public:
    explicit KeyConstraintTree(std::int64_t key)
        : constrainingKey(key) {}
    virtual ~KeyConstraintTree() = default;
    KeyConstraintTree(KeyConstraintTree&&) noexcept = default;
    KeyConstraintTree& operator=(KeyConstraintTree&&) noexcept = default;

    std::int64_t Key() const { return constrainingKey; }

    // Says where the forest keeps the key's lines now.
    void SetLines(std::span<const ConstraintRecord> own) { lines = own; }
    // Takes a line that must stand behind what the tree holds besides its stretch; false when there is
    // nothing, and the line belongs into the stretch.
    bool TakeLater(const ConstraintRecord& line);
    // Appends a line with an empty option; see WildcardLines::Add.
    void InsertWildcard(std::shared_ptr<const OptionRange> from, std::shared_ptr<const OptionRange> to,
                        const ConstraintRecord& line);

    // A new list of what the option constrains; for -1, what every option constrains, options ascending.
    std::unique_ptr<ItemConstraintList> GetItemConstraintList(std::int64_t option) const;

    // Appends the runs of one option's list (not -1) in order, without expanding any.
    void CollectRuns(std::int64_t option, std::vector<ConstraintRun>& runs) const;
    // Appends runs that hold every pair of every option's list at least once, in no order.
    void CollectAllRuns(std::vector<ConstraintRun>& runs) const;
    // The options that have a list, ascending.
    std::vector<std::int64_t> ActiveOptions() const;

    // Whether hit(run) accepts a run of the option's list, for -1 of any. Looks at equal wildcard lines once
    // and stops at the first hit; adds to looked what was looked at.
    template <typename Hit>
    bool AnyRun(std::int64_t option, Hit hit, std::uint64_t& looked) const;

    // Sets aside a copy of the option's list (-1: of every option), unless one is set aside already, and
    // takes out of the active one the pairs of key2 with option2 (-1: with any option). Returns the pairs
    // taken out.
    std::vector<KeyOption> DisableConstraints(std::int64_t option, std::int64_t key2, std::int64_t option2);
    // Makes the lists set aside active again, and returns the pairs that this brought back.
    std::vector<KeyOption> EnableConstraints(std::int64_t option);

private:
    using Records = std::vector<ConstraintRecord>;
    struct WrittenList {
        Records pairs;
        std::size_t wildcards = 0; // how many of those lines are among the pairs
    };
    struct Extras {
        WildcardLines wildcards;
        std::map<std::int64_t, WrittenList> written; // by option
        std::map<std::int64_t, Records> setAside;
    };

    Extras& More();
    const WrittenList* Written(std::int64_t option) const;
    std::span<const ConstraintRecord> OwnLines(std::int64_t option) const;
    bool HasList(std::int64_t option) const;
    Records& WriteOut(std::int64_t option);

    std::int64_t constrainingKey;
    std::span<const ConstraintRecord> lines;
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
