#pragma once

#include <cstdint>

namespace torka {

// A constraint line that leaves out one option or both. UIConstraints keeps it until the whole description is
// read, because only then is it known which options the keys offer. Identifiers are those of the store's
// CStringSoup; a left-out option is the identifier of the empty text.
struct SpecialConstraint {
    std::int64_t key1 = -1;
    std::int64_t option1 = -1;
    std::int64_t key2 = -1;
    std::int64_t option2 = -1;
    bool requirement = false;
};

} // namespace torka
