// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string_view>

// Comparisons that only the checks of descriptions need.

namespace torka {

// Returns the candidate that differs from the word by at most two letters, regardless of letter case (a
// letter more, less or other; two neighbours swapped). The nearest one, the first of equals; "" for none. A
// word of less than four letters may differ by one.
std::string_view closestWord(std::string_view word, std::span<const std::string_view> candidates);

// Returns what is unbalanced in PostScript: a brace, a parenthesis of a string, a hexadecimal or ASCII
// base-85 string (PostScript Language Reference, 3.2). "" when all is balanced. `placeholder` is skipped
// where it stands; it may be empty.
std::string_view postscriptFault(std::string_view postscript, std::string_view placeholder);

// Tells whether the placeholder stands in a literal string that holds anything else, too.
bool standsInLongerString(std::string_view postscript, std::string_view placeholder);

} // namespace torka
