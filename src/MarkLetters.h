// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace torka {

// The byte-order mark, and the six letters that stand for it in texts that pass through narrow records, whose
// readers drop a mark.
inline constexpr std::string_view narrowMark = "\xEF\xBB\xBF"; // UTF-8
inline constexpr std::wstring_view wideMark = L"\xFEFF";
inline constexpr std::string_view markLetters = "EFBBBF";
inline constexpr std::wstring_view wideMarkLetters = L"EFBBBF";

} // namespace torka
