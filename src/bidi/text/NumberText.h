// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace torka {

// The number as a stream writes it by default. Uses the C locale, independently of the process's locale.
std::string streamText(float value);
// The number with six digits behind the point, as "%lf" writes it in the C locale.
std::string fixedText(double value);

} // namespace torka
