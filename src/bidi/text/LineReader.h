#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>

// Lines of the two-way data file end in LF, CR or CR LF.

namespace torka {

// Reads up to a line end, which is consumed and not kept, or to the end of input. The last line needs no line
// end; after it the stream fails.
std::istream& safeGetline(std::istream& stream, std::string& line);

// Where the line that holds `position` ends: at its CR or LF, or at the end of the text.
std::size_t lineEnd(std::string_view text, std::size_t position);
// Where the next line begins, given the end of one.
std::size_t lineAfter(std::string_view text, std::size_t end);

// Every line followed by LF.
std::string withPlainLineEnds(std::string text);

} // namespace torka
