// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace torka {

// How often a text of the model stayed unset or empty because memory ran out. Only the host's main thread
// reads and writes it. Whoever must have all texts compares the count before and after: a parse, which then
// ends as PPDErr_OutOfMemory does, and an emission.
extern std::uint64_t gMemoryShortages;

} // namespace torka
