// SPDX-License-Identifier: Apache-2.0
#include "PPDX/PPDObjects/Interface/PPDX.h"

#include "PPDX/PPDObjects/Interface/ElementKeywords.h"
#include "PPDX/Utilities/ModelState.h"
#include "StringUtils.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace torka {

namespace {
constexpr std::size_t maximumNotedValues = 10000;

// These lines end a PostScript value although they begin with "*%": the closing quote is missing, and the
// element must not become part of the value.
bool endsValue(std::string_view line) {
    const ElementKeyword* element = findElementKeyword(line.substr(0, line.find_first_of(" \t:")));
    return element != nullptr && element->endsValue;
}

} // namespace

PPDX::PPDX() = default;

PPDX::~PPDX() = default;

bool PPDX::ParsePSKeywords(PPDStream& stream, const char* keyword) {
    struct Header {
        std::string_view keyword;
        HeaderValue PPDX::*value;
        bool isQuoted;
    };
    static constexpr Header headers[] = {
        {"*FormatVersion", &PPDX::formatVersion, true},
        {"*FileVersion", &PPDX::fileVersion, true},
        {"*PCFileName", &PPDX::pcFileName, true},
        {"*LanguageVersion", &PPDX::languageVersion, false},
        {"*LanguageEncoding", &PPDX::languageEncoding, false},
        {"*ModelName", &PPDX::modelName, true},
        {"*%QVVersion", &PPDX::makerVersion, true},
        {"*%QVVersionMac", &PPDX::makerVersionMac, true},
        {"*APDialogExtension", &PPDX::dialogExtension, true},
    };
    static_assert(std::ranges::all_of(
        headers, [](const Header& each) { return lineKind(each.keyword) == LineKind::header; }));
    const std::string_view sought(keyword != nullptr ? keyword : "");
    const auto* const header = std::find_if(std::begin(headers), std::end(headers),
                                            [&](const Header& each) { return each.keyword == sought; });
    if (header == std::end(headers)) {
        return false;
    }
    char text[kLineCapacity];
    const bool hasText =
        header->isQuoted ? GetQuotedString(stream, text, sizeof text) > 0 : RestOfLine(stream, text);
    const bool isOutranked = header->value == &PPDX::makerVersion && makerVersionMac != nullptr;
    if (!hasText || isOutranked) {
        return true;
    }
    this->*header->value = std::make_unique<CString>(text);
    if (header->value == &PPDX::makerVersionMac) {
        makerVersion = std::make_unique<CString>(text);
    } else if (!header->isQuoted) {
        RemakeConverter();
    }
    return true;
}

void PPDX::RemakeConverter() {
    textEncoding = TextConverter::GetPPDEncoding(this);
    SetApplicationTextEncoding(textEncoding);
    if (languageVersion && languageEncoding) {
        textConverter = std::make_unique<TextConverter>(this);
    }
}

bool PPDX::NextToken(PPDStream& stream, char* token, const DelimiterSet& delimiters, bool trim) {
    const std::string_view text = stream.TakeToken(delimiters, trim);
    *std::copy(text.begin(), text.end(), token) = '\0';
    return !text.empty();
}

bool PPDX::RestOfLine(PPDStream& stream, char* value) {
    static constexpr DelimiterSet none("");
    const std::string_view text = unquoted(stream.TakeToken(none, true));
    *std::copy(text.begin(), text.end(), value) = '\0';
    return !text.empty();
}

long PPDX::GetQuotedString(PPDStream& stream, char* out, long capacity) {
    const bool hasRoom = out != nullptr && capacity > 0;
    const std::size_t room = hasRoom ? static_cast<std::size_t>(capacity) - 1 : 0;
    const std::string_view value = TakeValue(stream, room, false);
    if (hasRoom) {
        *std::copy(value.begin(), value.end(), out) = '\0';
    }
    return value.empty() ? 0 : static_cast<long>(value.size()) + 1;
}

long PPDX::GetPostscriptString(PPDStream& stream, char* out, long capacity) {
    const bool hasRoom = out != nullptr && capacity > 0;
    const std::size_t room = hasRoom && capacity > 2 ? static_cast<std::size_t>(capacity) - 2 : 0;
    const std::string_view value = TakeValue(stream, room, true);
    if (!hasRoom) {
        return 0;
    }
    char* end = std::copy(value.begin(), value.end(), out);
    if (end != out) {
        *end++ = '\n';
    }
    *end = '\0';
    return value.empty() ? 0 : end - out + 1;
}

std::string_view PPDX::TakeValue(PPDStream& stream, std::size_t room, bool isPostscript) {
    static constexpr DelimiterSet quote("\"");
    const std::string_view line = stream.Remaining();
    const auto opening = static_cast<std::size_t>(quote.FindEnd(line) - line.data());
    if (opening == line.size() || line[opening] != '"') {
        stream.Skip(opening);
        return {};
    }
    const std::string_view rest = line.substr(opening + 1);
    const auto length = static_cast<std::size_t>(quote.FindEnd(rest) - rest.data());
    const bool isClosed = length < rest.size() && rest[length] == '"';
    stream.Skip(opening + 1 + length + (isClosed ? 1 : 0));
    const std::string_view start = rest.substr(0, std::min(length, room));
    if (isClosed) {
        LookBehindQuote(rest.substr(length + 1));
        return start;
    }
    longValue = start;
    const bool hasEnd = ReadRestOfValue(room, isPostscript);
    return hasEnd || !isPostscript ? std::string_view(longValue) : std::string_view();
}

// A translation may stand directly behind the quote (PPD 4.3, 3.5): "/" and text without quotes.
void PPDX::LookBehindQuote(std::string_view rest) {
    const bool isTranslation = rest.starts_with('/') && rest.find('"') == std::string_view::npos;
    if (rest.find_first_not_of(" \t") != std::string_view::npos && !isTranslation &&
        textsBehindQuotes.size() < maximumNotedValues) {
        textsBehindQuotes.push_back(LineNumber());
    }
}

// Returns false at the end of the file.
bool PPDX::ReadRestOfValue(std::size_t room, bool isPostscript) {
    const std::uint32_t opened = LineNumber();
    const auto note = [opened](std::vector<std::uint32_t>& values) {
        if (values.size() < maximumNotedValues) {
            values.push_back(opened);
        }
    };
    bool isCut = false;
    const auto append = [&](std::string_view text) {
        const std::string_view fitting = text.substr(0, room - longValue.size());
        longValue += fitting;
        if (!isPostscript && !isCut && fitting.size() < text.size()) {
            isCut = true;
            note(cutValues);
        }
    };
    std::string_view text;
    while (ReadNonEmptyLine(text)) {
        if (isPostscript && text.starts_with("*%") && !endsValue(text)) {
            text.remove_prefix(2);
        } else if (text.front() == '*') {
            PushBackLine();
            note(unclosedValues);
            return true;
        }
        if (isPostscript) {
            append("\n");
        }
        const std::size_t quote = text.find('"');
        append(text.substr(0, quote));
        if (quote != std::string_view::npos) {
            LookBehindQuote(text.substr(quote + 1));
            return true;
        }
    }
    note(unclosedValues);
    return false;
}

bool PPDX::ReadLine(std::string_view& line) {
    if (!fileStream) {
        line = {};
        return false;
    }
    const bool isEnded = fileStream->TakeLine(line);
    if (fileStream->LineMayHoldNul()) {
        line = line.substr(0, line.find('\0'));
    }
    return isEnded || !line.empty() || (!fileStream->EndOfFile() && !fileStream->Bad() && !gEndOfPPD);
}

bool PPDX::ReadNonEmptyLine(std::string_view& line) {
    while (ReadLine(line)) {
        if (!line.empty()) {
            return true;
        }
    }
    return false;
}

void PPDX::PushBackLine() {
    if (fileStream) {
        fileStream->UngetLine();
    }
}

std::uint32_t PPDX::LineNumber() const { return fileStream ? fileStream->LineNumber() : 0; }

bool PPDX::StartReading(std::unique_ptr<PPDFileStream> stream) {
    gEndOfPPD = false;
    unclosedValues.clear();
    cutValues.clear();
    textsBehindQuotes.clear();
    SetApplicationTextEncoding(kCFStringEncodingUnknown);
    fileStream = std::move(stream);
    return fileStream && !fileStream->Bad();
}

void PPDX::StopReading() {
    fileStream.reset();
    std::string().swap(longValue);
}

} // namespace torka
