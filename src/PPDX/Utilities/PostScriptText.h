// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Texts inside PostScript programs (PostScript Language Reference, 3.2).

namespace torka {

// Returns the text as the body of a PostScript string. A text stays unchanged when its parentheses balance
// and every backslash escapes something. In any other text, escapes each unbalanced parenthesis and a lone
// backslash at the end, so that the string ends at its own closing parenthesis.
std::string asStringBody(std::string_view text);

constexpr bool endsComment(char c) { return c == '\r' || c == '\n' || c == '\f'; }

// Replaces by blanks what ends a comment: CR, LF and form feed.
std::string withoutLineBreaks(std::string_view text);

// Follows a program and tells what its next character belongs to. Knows the syntax alone: it runs nothing.
class PostScriptScanner {
public:
    enum class Place { code, string, hexString, base85String, comment };

    void Read(std::string_view text);
    // A character directly after "<" counts as part of a hexadecimal string.
    Place Where() const { return place; }
    // Tells whether the braces read so far balance, outside strings and comments.
    bool AreBracesBalanced() const { return openBraces == 0 && !hasStrayBrace; }

private:
    void Read(char c);
    void ReadInCode(char c);

    Place place = Place::code;
    char previous = '\0';        // the character before, when its meaning depends on this one
    std::size_t openStrings = 0; // parentheses of the current string
    std::size_t openBraces = 0;
    bool hasStrayBrace = false;
};

// Tells whether the character is a regular one, as in names and numbers: no white space and no delimiter.
bool isRegularCharacter(char c);

} // namespace torka
