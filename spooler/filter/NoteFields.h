#pragma once

#include <optional>
#include <string>
#include <string_view>

// Lines of fields, as the filter keeps them in files of its own. Each field is "=", its text, and a blank;
// what could end a field is written as "%" and two hexadecimal digits.

namespace torka::filter {

void appendField(std::string& line, std::string_view text);
// The next field of a line, which is taken off it; nothing where none stands.
std::optional<std::string> takeField(std::string_view& line);

} // namespace torka::filter
