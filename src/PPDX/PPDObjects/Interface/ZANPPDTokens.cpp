#include "PPDX/PPDObjects/Interface/PPDLint.h"
#include "PPDX/PPDObjects/Interface/ZANPPD.h"

namespace torka {

namespace {

constexpr DelimiterSet wordEnds(" \t:");
constexpr DelimiterSet nameEnds("/:");
constexpr DelimiterSet colon(":");

// The longest PostScript value that is kept; what goes beyond is cut.
constexpr long postscriptCapacity = 65536;

} // namespace

std::string_view ZANPPD::TakeMainKeyword(PPDStream& line) { return line.TakeToken(wordEnds, true); }

// The next word, whatever blanks and colons stand before it.
std::string_view ZANPPD::TakeWord(PPDStream& line) {
    const std::string_view rest = line.Remaining();
    const std::size_t begin = rest.find_first_not_of(" \t:");
    line.Skip(begin == std::string_view::npos ? rest.size() : begin);
    return line.TakeToken(wordEnds, true);
}

ZANPPD::NamedToken ZANPPD::TakeNamedToken(PPDStream& line, bool trimName) {
    NamedToken result;
    const std::string_view before = line.Remaining();
    result.token = line.TakeToken(nameEnds, true);
    const std::size_t consumed = before.size() - line.Remaining().size();
    if (consumed > 0 && before[consumed - 1] == '/') {
        result.hasName = true;
        result.name = line.TakeToken(colon, trimName);
    }
    return result;
}

CFStringRef ZANPPD::LocalName(const NamedToken& token, long line) {
    return Localized(token.hasName ? token.name : token.token, token.token, line);
}

// The text in the description's encoding; in UTF-8 while that is not known.
CFStringRef ZANPPD::Localized(std::string_view text, std::string_view keyword, long line) {
    TextConverter* converter = Converter();
    if (lint) {
        lint->CheckText(line, keyword, text,
                        converter ? TextConverter::GetPPDEncoding(this) : kCFStringEncodingUTF8);
    }
    return converter ? converter->ConvertToCFString(text) : cfString(text);
}

// The quoted PostScript that begins on the line; empty when there is none. Valid until the next one is taken.
std::string_view ZANPPD::TakePostscript(PPDStream& line) {
    if (!valueBuffer) {
        valueBuffer = std::make_unique_for_overwrite<char[]>(static_cast<std::size_t>(postscriptCapacity));
    }
    const long length = GetPostscriptString(line, valueBuffer.get(), postscriptCapacity);
    return {valueBuffer.get(), static_cast<std::size_t>(length > 0 ? length - 1 : 0)};
}

} // namespace torka
