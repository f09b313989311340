#pragma once

#include "apps/torka/Description.h"

#include <cstdint>
#include <string_view>

namespace torka::tool {

// {"site", "text"} for bytes that are UTF-8, {"site", "base64"} for others.
Json entryJson(std::int32_t site, std::string_view bytes);
// One entry for people: its site, what that means, and the text indented below it.
void printEntry(std::int32_t site, std::string_view bytes);

} // namespace torka::tool
