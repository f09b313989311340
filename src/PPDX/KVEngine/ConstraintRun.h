// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "PPDX/KVEngine/KVCache.h"
#include "PPDX/KVEngine/KeyForest.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace torka {

// One line of a description that names both options: key1=option1 constrains key2=option2. The identifiers
// belong to the store's string table and fit 32 bits. A store may hold hundreds of thousands of these
// records.
struct ConstraintRecord {
    std::uint32_t key1;
    std::uint32_t option1;
    std::uint32_t key2;
    std::uint32_t option2;

    KeyOption Constrained() const { return {key2, option2}; }
};

// The options that an empty option of a constraint line means: all that its key had when the lines were
// resolved, except the two that mean "off".
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

// A part of one option's constraint list, not expanded. Means what `lines` constrain, or (key, o) for every
// option o of a range, the whole `repeat` times. Points into its forest and is valid until the forest
// changes.
struct ConstraintRun {
    std::span<const ConstraintRecord> lines;
    const OptionRange* range = nullptr;
    std::int64_t key = -1;
    std::size_t repeat = 1;

    // Calls visit(pair) for each pair in order. Stops and returns false when visit does.
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
