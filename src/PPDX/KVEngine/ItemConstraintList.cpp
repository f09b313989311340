// SPDX-License-Identifier: Apache-2.0
#include "PPDX/KVEngine/ItemConstraintList.h"

namespace torka {

ItemConstraintList ItemConstraintList::operator+(const ItemConstraintList& other) const {
    ItemConstraintList sum = *this;
    sum += other;
    return sum;
}

ItemConstraintList& ItemConstraintList::operator+=(const ItemConstraintList& other) {
    const std::size_t count = other.size();
    pairs.reserve(pairs.size() + count);
    for (std::size_t i = 0; i < count; ++i) {
        pairs.push_back(other.pairs[i]);
    }
    return *this;
}

std::unique_ptr<KeyOption> ItemConstraintList::operator[](std::int64_t i) const {
    if (i < 0 || static_cast<std::size_t>(i) >= pairs.size()) {
        return nullptr;
    }
    return std::make_unique<KeyOption>(pairs[static_cast<std::size_t>(i)]);
}

} // namespace torka
