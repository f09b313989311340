// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "apps/torka/Description.h"

#include <cstdint>
#include <string_view>

namespace torka::tool {

// {"site", "text"} for valid UTF-8, {"site", "base64"} for other bytes.
Json entryJson(std::int32_t site, std::string_view bytes);
// Prints one entry for people: the number and name of its site, and the text indented below them.
void printEntry(std::int32_t site, std::string_view bytes);

} // namespace torka::tool
