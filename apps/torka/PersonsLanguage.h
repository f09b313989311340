// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace torka::tool {

// The message in the person's language. While it is English, reads no table. docs/languages.md tells which
// output stays English.
std::string inPersonsLanguage(std::string_view english);

} // namespace torka::tool
