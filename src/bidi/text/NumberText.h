#pragma once

#include <string>

namespace torka {

// Numbers as a stream writes them by default, in the C locale whatever the host's is.
std::string streamText(float value);
// With six digits behind the point, as "%lf" writes it.
std::string fixedText(double value);

} // namespace torka
