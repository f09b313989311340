// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

namespace torka {

// Returns a hash for tables in memory. Every process has its own hashes, so that nobody can write a
// description whose texts collide.
std::uint64_t hashText(std::string_view text);

} // namespace torka
