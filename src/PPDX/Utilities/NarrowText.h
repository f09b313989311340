// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/TextEncoding.h"

#include <string>
#include <string_view>

// What narrow text can hold. A text with any other character cannot be converted and would leave the process
// empty.

namespace torka {

// Returns the characters that the encoding lacks, each once and in the order of the text: "" when it holds
// the whole text. The encoding in force is narrowTextEncoding (ModelState.h).
std::u16string charactersOutside(std::u16string_view text, CFStringEncoding encoding);

// Returns a name for people, such as "ISO Latin 1"; "an unknown encoding" for a number without a name.
std::string_view encodingName(CFStringEncoding encoding);

} // namespace torka
