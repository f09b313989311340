// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The words of an unfinished command line of bash, and the form in which bash takes the rest of the last one.

namespace torka::tool {

// Splits a line as a POSIX shell does (POSIX.1-2017, 2.2 Quoting), but expands and runs nothing: "$" and "`"
// stand for themselves.
class CompletionLine {
public:
    // `line` ends at the cursor. `breaks` are the characters at which the shell's line editor begins a new
    // word (COMP_WORDBREAKS); it replaces only what follows the last of them.
    CompletionLine(std::string_view line, std::string_view breaks);

    // The last word is the one that is completed; it may be empty.
    const std::vector<std::string>& Words() const { return words; }
    // Returns what the line editor inserts so that the last word becomes `candidate`; "" when no quoting can
    // express it. REQUIRES: printable text.
    std::string Insertion(std::string_view candidate) const;

private:
    std::vector<std::string> words;
    std::size_t kept = 0; // bytes of the last word that the line editor keeps
    char quote = '\0';    // the quote that is open at the cursor
};

} // namespace torka::tool
