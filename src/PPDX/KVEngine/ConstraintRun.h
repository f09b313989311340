#pragma once

#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/KeyForest.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace torka {

// One line of a description that names both options: key1=option1 constrains key2=option2. Identifiers of the
// store's string table, which fit 32 bits; a store may hold hundreds of thousands of these.
struct ConstraintRecord {
    std::uint32_t key1;
    std::uint32_t option1;
    std::uint32_t key2;
    std::uint32_t option2;

    KeyOption Constrained() const { return {key2, option2}; }
};

// What an empty option of a constraint line stands for: the options that its key had when the lines were
// resolved, but for the two that mean "off".
struct OptionRange {
    std::shared_ptr<const KeyOptions> options;
    std::size_t count = 0;
    std::array<std::int64_t, 2> skipped{-1, -1};

    bool Skips(std::int64_t option) const { return option == skipped[0] || option == skipped[1]; }
    std::size_t Occurrences(std::int64_t option) const {
        return Skips(option) ? 0 : options->Occurrences(option, count);
    }
    std::span<const std::int64_t> Items() const { return std::span(options->Items()).first(count); }
    bool Empty() const {
        for (const std::int64_t option : Items()) {
            if (!Skips(option)) {
                return false;
            }
        }
        return true;
    }
};

// A stretch of one option's constraint list, not expanded: either what these lines constrain, or (key, o) for
// every option o of a range; the whole repeat times over. Points into the forest that gave it: valid until
// that changes.
struct ConstraintRun {
    std::span<const ConstraintRecord> lines;
    const OptionRange* range = nullptr;
    std::int64_t key = -1;
    std::size_t repeat = 1;

    // Calls visit(pair) for each pair in order; stops and answers false once visit does.
    template <typename Visit>
    bool ForEach(Visit visit) const {
        for (std::size_t round = 0; round < repeat; ++round) {
            for (const ConstraintRecord& line : lines) {
                if (!visit(line.Constrained())) {
                    return false;
                }
            }
            if (range == nullptr) {
                continue;
            }
            for (const std::int64_t option : range->Items()) {
                if (!range->Skips(option) && !visit(KeyOption{key, option})) {
                    return false;
                }
            }
        }
        return true;
    }
};

} // namespace torka
