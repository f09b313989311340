#pragma once

#include <string>
#include <string_view>

// The check that stands before libplist's reader, which takes hostile or damaged lists too easily: it
// recurses as deep as the list does, takes time by the square of a text's entities and of a dictionary's
// keys, reads "010" as 8, "1,5" as 1 and an integer beyond 64 bits as the largest one, and a list cut short
// for a whole one.

namespace torka::platform {

inline constexpr std::size_t mostPropertyListBytes = 64 * 1024 * 1024;
inline constexpr std::size_t mostPropertyListValues = 100'000;
inline constexpr int mostPropertyListDepth = 64;

// Checks a whole XML property list and writes it without prolog, comments, entities and blanks between
// elements. False when it is not one that the system reads; `error` then says what is wrong, with its line.
bool makePlainForm(std::string_view xml, std::string& plain, std::string& error);

} // namespace torka::platform
