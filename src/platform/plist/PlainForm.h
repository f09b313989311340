// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Result.h"

#include <string>
#include <string_view>

// Checks a list before libplist reads it, because libplist's reader accepts hostile and damaged lists. It
// recurses as deep as the list, and its time grows by the square of a text's entities and of a dictionary's
// keys. It reads "010" as 8, "1,5" as 1, and an integer beyond 64 bits as the largest one. It takes a cut
// list for a complete one.

namespace torka::platform {

inline constexpr std::size_t maximumPropertyListBytes = 64 * 1024 * 1024;
inline constexpr std::size_t maximumPropertyListValues = 100'000;
inline constexpr int maximumPropertyListDepth = 64;

// Checks a whole XML property list, and writes it without prolog, comments, entities and blanks between
// elements. Fails, and names the line, when the system does not read such a list.
Result<std::string> makePlainForm(std::string_view xml);

} // namespace torka::platform
