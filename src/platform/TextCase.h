// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace torka::platform {

// Full Unicode case mapping, independent of language and locale ("ß" becomes "SS").
std::u16string upperCase(std::u16string_view text);
// As upperCase, for UTF-8. Invalid bytes become U+FFFD.
std::string upperCaseUtf8(std::string_view text);
// The code point by which Unicode compares without regard to case (simple case folding).
char32_t foldCase(char32_t point);
// Whether the unit is white space in Unicode (the property White_Space).
bool isWhiteSpace(char16_t unit);

} // namespace torka::platform
