// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace torka {

// A constraint line that omits one option or both. UIConstraints keeps it until the whole description is
// read: only then all options of the keys are known. Identifiers belong to the store's CStringSoup. An
// omitted option is the identifier of the empty text.
struct SpecialConstraint {
    std::int64_t key1 = -1;
    std::int64_t option1 = -1;
    std::int64_t key2 = -1;
    std::int64_t option2 = -1;
    bool requirement = false;
};

} // namespace torka
