#pragma once

#include "MarkLetters.h"

#include <string>
#include <string_view>

// Preset data that pass through narrow text must not begin with a byte-order mark, or its reader drops it:
// the mark travels as six letters.

namespace torka {

// In a text that begins with the mark every mark becomes letters; other texts stay as they are.
std::string withMarkLetters(std::string_view narrow);
std::wstring withMarkLetters(std::wstring_view wide);
// In a text that begins with the letters they become marks again, every time.
std::string withMarks(std::string_view narrow);
std::wstring withMarks(std::wstring_view wide);

} // namespace torka
