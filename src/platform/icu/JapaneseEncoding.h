#pragma once

#include <optional>
#include <string>
#include <string_view>

// Mac Japanese: ICU's Shift_JIS with the single bytes in which the two differ. ICU itself lacks it.

namespace torka::platform {

// For invalid bytes: U+FFFD with `lossy`, otherwise nullopt for the whole text.
std::optional<std::u16string> decodeJapanese(std::string_view bytes, bool lossy);
// nullopt when the encoding lacks a character.
std::optional<std::string> encodeJapanese(std::u16string_view text);

} // namespace torka::platform
