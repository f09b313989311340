// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MarkLetters.h"

#include <string>
#include <string_view>

// A reader of narrow text drops a byte-order mark at its beginning. Preset data therefore carry each mark as
// the six letters "EFBBBF".

namespace torka {

// Replaces every mark by the letters when the text begins with a mark; returns any other text unchanged.
std::wstring withMarkLetters(std::wstring_view wide);
// Replaces the letters by marks everywhere when the text begins with the letters; returns any other text
// unchanged.
std::string withMarks(std::string_view narrow);
std::wstring withMarks(std::wstring_view wide);

} // namespace torka
