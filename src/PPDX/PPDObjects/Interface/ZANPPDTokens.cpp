// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/DelimiterSet.h"
#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

namespace torka {

namespace {

constexpr DelimiterSet wordEnds(" \t:");
constexpr DelimiterSet nameEnds("/:");

// The maximum length of a PostScript value without the line feed at its end; longer values are cut.
constexpr std::size_t longestPostscript = 65534;

} // namespace

// Takes a word and what separates it from its value: a colon, blanks, or blanks and a colon.
// REQUIRES: a line without line end and of at most 255 characters.
std::string_view ZANPPD::TakeMainKeyword(PPDStream& line) {
    line.SkipWhiteSpace();
    const std::string_view rest = line.Remaining();
    const auto length = static_cast<std::size_t>(wordEnds.FindEnd(rest) - rest.data());
    std::size_t next = length + 1;
    if (length < rest.size() && rest[length] != ':') {
        const std::size_t value = rest.find_first_not_of(" \t", next);
        next = value < rest.size() && rest[value] == ':' ? value + 1 : next;
    }
    line.Skip(next);
    return {rest.data(), length};
}

// Returns the next word. Skips blanks and colons before it, and a colon behind it.
std::string_view ZANPPD::TakeWord(PPDStream& line) {
    const std::string_view rest = line.Remaining();
    const std::size_t begin = rest.find_first_not_of(" \t:");
    line.Skip(begin == std::string_view::npos ? rest.size() : begin);
    return TakeMainKeyword(line);
}

ZANPPD::NamedToken ZANPPD::TakeNamedToken(PPDStream& line, bool trimName) {
    NamedToken result;
    const std::string_view before = line.Remaining();
    result.token = line.TakeToken(nameEnds, true);
    const std::size_t consumed = before.size() - line.Remaining().size();
    if (consumed > 0 && before[consumed - 1] == '/') {
        result.hasName = true;
        result.name = line.TakeToken(colonEnds, trimName);
    }
    return result;
}

CFStringRef ZANPPD::LocalName(const NamedToken& token, long line) {
    return Localized(token.hasName ? token.name : token.token, token.token, line);
}

void ZANPPD::CheckText(std::string_view text, std::string_view keyword, long line) {
    if (lint) {
        lint->CheckText(line, keyword, text,
                        Converter() ? std::optional(TextConverter::GetPPDEncoding(this)) : std::nullopt);
    }
}

// Decodes the text from the description's encoding; from UTF-8 while that is not known.
CFStringRef ZANPPD::Localized(std::string_view text, std::string_view keyword, long line) {
    CheckText(text, keyword, line);
    TextConverter* converter = Converter();
    return converter ? converter->ConvertToCFString(text) : cfString(text);
}

// Returns the same name as LocalName, converted only on request. Uses the current encoding, which a later
// line may change. REQUIRES: the token's texts live as long as the description.
ChoiceName ZANPPD::NameOfChoice(const NamedToken& token, long line) {
    const std::string_view text = token.hasName ? token.name : token.token;
    if (text.empty() || !Converter()) {
        return ChoiceName(LocalName(token, line));
    }
    CheckText(text, token.token, line);
    return {text, TextEncoding()};
}

// Keeps the text for the life of the description.
std::string_view ZANPPD::Keep(std::string_view text) {
    return {reinterpret_cast<const char*>(postscript.Keep(text)), text.size()};
}

// Reads the quoted PostScript that begins on the line and keeps it for the life of the description. Empty
// when there is none.
ZANPPD::PostscriptBytes ZANPPD::TakePostscript(PPDStream& line) {
    const std::string_view value = TakeValue(line, longestPostscript, true);
    if (value.empty()) {
        return {};
    }
    return {postscript.Keep(value, "\n"), static_cast<long>(value.size()) + 1};
}

} // namespace torka
