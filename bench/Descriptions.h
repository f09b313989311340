// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdlib>
#include <string>

namespace torka::bench {

// The file of a generated description: "small", "medium" or "large". TORKA_BENCH_PPDS in the environment
// names another folder with the three files.
inline std::string descriptionPath(const std::string& size) {
    const char* other = std::getenv("TORKA_BENCH_PPDS");
    return std::string(other == nullptr ? TORKA_BENCH_PPDS : other) + "/" + size + ".ppd";
}

} // namespace torka::bench
