// SPDX-License-Identifier: Apache-2.0
// Loads FieldKeys.plist with arbitrary content. The result is an error with a text, or a set in which every
// key and vector can be read.

#include "ZANUtils/FieldKeys.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto loaded = torka::FieldKeys::Load(std::span(data, size));
    if (!loaded) {
        if (loaded.Why().text.empty()) {
            std::abort();
        }
        return 0;
    }
    const auto& keys = *loaded;
    unsigned sum = 0;
    for (const char* value : {"", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11"}) {
        for (const std::uint8_t byte : keys->AesKey(value)) {
            sum += byte;
        }
        for (const std::uint8_t byte : keys->Vector(value)) {
            sum += byte;
        }
    }
    for (const std::uint8_t byte : keys->StringVector()) {
        sum += byte;
    }
    // Uses the sum, so that the compiler removes no read.
    return sum == 0xFFFFFFFF ? 1 : 0;
}
