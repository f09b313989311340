// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>

// Reads the lines of the two-way data file, which end in LF, CR or CR LF.

namespace torka {

// The end of the line that holds `position`: its CR or LF, or the end of the text.
std::size_t lineEnd(std::string_view text, std::size_t position);
// The beginning of the next line. `end` is the end of a line.
std::size_t lineAfter(std::string_view text, std::size_t end);

// Ends every line in LF.
std::string withPlainLineEnds(std::string text);

// Given interface; no caller here
// Reads up to a line end or the end of input, and drops the line end. The last line needs no line end. After
// the last line the stream fails.
std::istream& safeGetline(std::istream& stream, std::string& line);

} // namespace torka
