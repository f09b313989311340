// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The forms of values among a job's options. Everything is read in the C locale and without regard to the
// case of ASCII letters.

namespace torka {

std::string lowerCaseAscii(std::string_view text);
bool isSameAscii(std::string_view one, std::string_view other);

// "true", "on", "yes" and their opposites, and "1" and "0".
std::optional<bool> truthOf(std::string_view text);
// The whole text as a finite number.
std::optional<double> numberOf(std::string_view text);

struct OptionSize { // points
    double width = 0;
    double height = 0;
};
// "WIDTHxHEIGHT" with an optional unit behind it (pt, in, ft, cm, mm, m; points without one), also behind
// "Custom.", as CUPS writes custom sizes; or "WIDTH HEIGHT" in points.
std::optional<OptionSize> sizeOf(std::string_view text);

} // namespace torka
