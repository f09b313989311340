#pragma once

#include <string>
#include <string_view>

namespace torka {

// Every "EFBBBF" replaced by the byte-order mark of UTF-8. A replacement may complete another "EFBBBF" with
// what stands around it only if the mark held such letters, which it does not: one pass gives what scanning
// again from the start gives.
std::string withByteOrderMarks(std::string_view text);

// When the text contains `pattern`, "(" or ")", only the first occurrence becomes its octal escape "\050" or
// "\051"; later ones are left as they are.
std::string replaceWithBackslashIfNeeded(std::string_view pattern, std::string text);

// The text as the body of a PostScript string. A text whose parentheses balance and whose backslashes escape
// something comes back unchanged; in any other every parenthesis that breaks the balance and a last lone
// backslash is escaped, so that the string ends where it is meant to end.
std::string asStringBody(std::string_view text);

// CR and LF made blanks.
std::string withoutLineBreaks(std::string_view text);

} // namespace torka
