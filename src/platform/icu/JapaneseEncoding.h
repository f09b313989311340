#pragma once

#include <optional>
#include <string>
#include <string_view>

// Mac Japanese: Shift_JIS as ICU knows it, with the single bytes in which the two differ. No library at hand
// knows it.

namespace torka::platform {

// With `lossy` what cannot be read becomes U+FFFD, else the answer is then empty.
std::optional<std::u16string> decodeJapanese(std::string_view bytes, bool lossy);
// Empty when a character cannot be written.
std::optional<std::string> encodeJapanese(std::u16string_view text);

} // namespace torka::platform
