// SPDX-License-Identifier: Apache-2.0
#include "ZANUtils/DES.h"

#include "ZANUtils/SecureBuffer.h"

#include <algorithm>

namespace torka {

DES::~DES() { wipeValue(schedule); }

void DES::deskey(const std::uint8_t* key, short mode) {
    if (key == nullptr || (mode != EN0 && mode != DE1)) {
        return;
    }
    static_cast<void>(des_set_key(&schedule, key)); // its result only marks weak keys
    if (mode == DE1) {
        // Deciphering uses the sixteen round keys, two words each, in reverse order.
        for (int first = 0, last = scheduleWords - 2; first < last; first += 2, last -= 2) {
            std::swap_ranges(schedule.key + first, schedule.key + first + 2, schedule.key + last);
        }
    }
}

void DES::usekey(const std::uint32_t* from) {
    if (from != nullptr) {
        std::copy_n(from, scheduleWords, schedule.key);
    }
}

void DES::cpkey(std::uint32_t* into) const {
    if (into != nullptr) {
        std::copy_n(schedule.key, scheduleWords, into);
    }
}

void DES::des(const std::uint8_t* in, std::uint8_t* out) const {
    if (in != nullptr && out != nullptr) {
        des_encrypt(&schedule, blockBytes, out, in);
    }
}

} // namespace torka
