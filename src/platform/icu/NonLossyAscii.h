#pragma once

#include <optional>
#include <string>
#include <string_view>

// Text of any kind in 7 bits: a backslash is "\\", U+0080 to U+00FF are "\NNN" (octal), units beyond are
// "\uXXXX".

namespace torka::platform {

// With `lossy` what cannot be read becomes U+FFFD, else the answer is then empty.
std::optional<std::u16string> decodeNonLossyAscii(std::string_view bytes, bool lossy);
std::string encodeNonLossyAscii(std::u16string_view text);

} // namespace torka::platform
