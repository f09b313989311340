// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Shift_JIS with the characters of JIS X 0208, and Mac Japanese: the same with single bytes of its own. ICU
// itself lacks the second.

namespace torka::platform {

enum class Japanese {
    shiftJis, // the bytes below 0x80 are ASCII; the yen sign and the overline are only written, as 0x5C and
              // 0x7E
    mac,      // 0x5C is the yen sign, 0x80 the backslash; 0xA0 and 0xFD to 0xFF are characters
};

// For invalid bytes: U+FFFD with `lossy`, otherwise nullopt for the whole text.
std::optional<std::u16string> decodeJapanese(std::string_view bytes, Japanese kind, bool lossy);
// nullopt when the encoding lacks a character.
std::optional<std::string> encodeJapanese(std::u16string_view text, Japanese kind);

} // namespace torka::platform
