// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace torka {

// Replaces every "EFBBBF" by the byte-order mark of UTF-8. One pass is enough: the mark holds none of these
// letters, so a replacement cannot complete another "EFBBBF".
std::string withByteOrderMarks(std::string_view text);

// Replaces the first occurrence of `pattern`, "(" or ")", by its octal escape "\050" or "\051". Leaves later
// occurrences unchanged.
std::string replaceWithBackslashIfNeeded(std::string_view pattern, std::string text);

} // namespace torka
