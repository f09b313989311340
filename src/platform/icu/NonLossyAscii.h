// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Any text in 7 bits: a backslash is "\\", U+0080 to U+00FF are "\NNN" (octal), and further units "\uXXXX".

namespace torka::platform {

// For invalid bytes: U+FFFD with `lossy`, otherwise nullopt for the whole text.
std::optional<std::u16string> decodeNonLossyAscii(std::string_view bytes, bool lossy);
std::string encodeNonLossyAscii(std::u16string_view text);

} // namespace torka::platform
