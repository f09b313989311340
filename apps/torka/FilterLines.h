#pragma once

#include <string>
#include <string_view>

namespace torka::tool {

// A description with the lines that send a queue's PostScript documents and its command jobs through
// torkafilter, behind its first line. Lines of other filters for these two types go; those for other types
// stay. Without a line for commands the server's own filters would take them and answer nothing.
std::string withFilterLines(std::string_view description);

} // namespace torka::tool
