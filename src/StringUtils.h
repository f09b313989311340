// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string_view>

// Reads numbers and trims texts, in the C locale and within bounds.

namespace torka {

// Removes blanks and tabs at both ends.
std::string_view trimBlanks(std::string_view text);
// Trims the text and removes double quotes around it.
std::string_view unquoted(std::string_view text);

// Returns the decimal integer after leading white space and a sign, as atol reads it; 0 when there is none.
// Clamps a number to the range of the type.
std::int64_t integerValue(std::string_view text);
// Tells whether integerValue clamps the number.
bool integerOverflows(std::string_view text);
// Return the decimal number after leading white space, with fraction and exponent, as strtod reads one.
// Return 0 when there is none or when the type has no finite value for it.
double realValue(std::string_view text);

// For the tests; no caller here
// Return the decimal number after leading white space, with fraction and exponent, as strtod reads one.
// Return 0 when there is none or when the type has no finite value for it.
float floatValue(std::string_view text);

} // namespace torka
