// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string>

namespace torka::tests {

// Printable characters that do not compress well, the same each time.
inline std::string noise(std::size_t size) {
    std::string text(size, ' ');
    unsigned seed = 1;
    std::ranges::generate(text, [&seed] {
        seed = seed * 1103515245U + 12345U;
        return static_cast<char>('!' + (seed >> 16U) % 90);
    });
    return text;
}

} // namespace torka::tests
