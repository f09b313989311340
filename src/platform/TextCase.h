#pragma once

#include <string>
#include <string_view>

namespace torka::platform {

// Full Unicode case mapping, the same for every language and locale ("ß" becomes "SS").
std::u16string upperCase(std::u16string_view text);
// As upperCase for UTF-8; what is no UTF-8 becomes U+FFFD.
std::string upperCaseUtf8(std::string_view text);

} // namespace torka::platform
