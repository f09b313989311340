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

// Returns the text as the body of a PostScript string. A text stays unchanged when its parentheses balance
// and every backslash escapes something. In any other text, escapes each unbalanced parenthesis and a lone
// backslash at the end, so that the string ends at its own closing parenthesis.
std::string asStringBody(std::string_view text);

// Replaces CR and LF by blanks.
std::string withoutLineBreaks(std::string_view text);

} // namespace torka
