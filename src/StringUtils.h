#pragma once

#include <cstdint>
#include <string_view>

// Reading numbers and trimming texts, in the C locale and within bounds.

namespace torka {

// Without blanks and tabs at both ends.
std::string_view trimBlanks(std::string_view text);
// Trimmed; a value in double quotes loses them.
std::string_view unquoted(std::string_view text);

// The decimal integer after leading white space and a sign, as atol reads it; 0 when there is none. A number
// out of range gives the end of the range.
std::int64_t integerValue(std::string_view text);
// Whether integerValue had to hold the number to its range.
bool integerOverflows(std::string_view text);
// The decimal number after leading white space, with fraction and exponent, as strtod reads one; 0 when there
// is none or when it is no finite number of that type.
float floatValue(std::string_view text);
double realValue(std::string_view text);

} // namespace torka
