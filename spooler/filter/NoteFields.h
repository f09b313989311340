// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

// Lines of fields in the filter's own files. Each field is "=", its text, and a blank. A character that could
// end a field is written as "%" and two hexadecimal digits.

namespace torka::filter {

void appendField(std::string& line, std::string_view text);
// Removes the next field from the line and returns it. Returns nothing, and empties the line, when the line
// does not begin with a field or the field cannot be decoded: whoever gets a field has got those before it.
std::optional<std::string> takeField(std::string_view& line);

} // namespace torka::filter
