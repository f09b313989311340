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
constexpr std::size_t maximumUnclosedValues = 10000;

// These lines end a PostScript value although they begin with "*%": the closing quote is missing, and the
// element must not become part of the value.
bool endsValue(std::string_view line) {
    const ElementKeyword* element = findElementKeyword(line.substr(0, line.find_first_of(" \t:")));
    return element != nullptr && element->endsValue;
}

} // namespace

// Collects the bytes of a value as far as they fit.
struct PPDX::ValueWriter {
    char* out;
    std::size_t room; // without the bytes written at the end
    std::size_t length = 0;

    void Append(std::string_view text) {
        const std::size_t count = std::min(text.size(), room - length);
        std::copy_n(text.data(), count, out + length);
        length += count;
    }
};

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
    SetApplicationTextEncoding(TextConverter::GetPPDEncoding(this));
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
    ValueWriter writer{out, hasRoom ? static_cast<std::size_t>(capacity) - 1 : 0};
    CopyValue(stream, writer, false);
    if (hasRoom) {
        out[writer.length] = '\0';
    }
    return writer.length > 0 ? static_cast<long>(writer.length) + 1 : 0;
}

long PPDX::GetPostscriptString(PPDStream& stream, char* out, long capacity) {
    const bool hasRoom = out != nullptr && capacity > 0;
    ValueWriter writer{out, hasRoom && capacity > 2 ? static_cast<std::size_t>(capacity) - 2 : 0};
    const ValueEnd ending = CopyValue(stream, writer, true);
    if (!hasRoom) {
        return 0;
    }
    if (ending == ValueEnd::endOfFile || writer.length == 0) {
        out[0] = '\0';
        return 0;
    }
    out[writer.length++] = '\n';
    out[writer.length] = '\0';
    return static_cast<long>(writer.length) + 1;
}

PPDX::ValueEnd PPDX::CopyValue(PPDStream& stream, ValueWriter& writer, bool isPostscript) {
    std::string_view text = stream.Remaining();
    text = text.substr(0, std::min(text.find('\r'), text.find('\n')));
    const std::size_t opening = text.find('"');
    if (opening == std::string_view::npos) {
        stream.Skip(text.size());
        return ValueEnd::closed;
    }
    text.remove_prefix(opening + 1);
    const std::size_t closing = text.find('"');
    stream.Skip(opening + 1 + (closing == std::string_view::npos ? text.size() : closing + 1));
    writer.Append(text.substr(0, closing));
    if (closing != std::string_view::npos) {
        return ValueEnd::closed;
    }
    const std::uint32_t opened = LineNumber();
    const auto unclosed = [&](ValueEnd ending) {
        if (unclosedValues.size() < maximumUnclosedValues) {
            unclosedValues.push_back(opened);
        }
        return ending;
    };
    char line[kLineCapacity];
    while (ReadNonEmptyLine(line)) {
        text = line;
        if (isPostscript && text.starts_with("*%") && !endsValue(text)) {
            text.remove_prefix(2);
        } else if (text.front() == '*') {
            PushBackLine(line);
            return unclosed(ValueEnd::nextElement);
        }
        if (isPostscript) {
            writer.Append("\n");
        }
        const std::size_t quote = text.find('"');
        writer.Append(text.substr(0, quote));
        if (quote != std::string_view::npos) {
            return ValueEnd::closed;
        }
    }
    return unclosed(ValueEnd::endOfFile);
}

bool PPDX::ReadLine(char* line) {
    if (!fileStream) {
        line[0] = '\0';
        return false;
    }
    if (fileStream->GetLine(line) || line[0] != '\0') {
        return true;
    }
    return !fileStream->EndOfFile() && !fileStream->Bad() && !gEndOfPPD;
}

bool PPDX::ReadNonEmptyLine(char* line) {
    while (ReadLine(line)) {
        if (line[0] != '\0') {
            return true;
        }
    }
    return false;
}

void PPDX::PushBackLine(const char* line) {
    if (fileStream && line != nullptr) {
        fileStream->UngetLine(line);
    }
}

std::uint32_t PPDX::LineNumber() const { return fileStream ? fileStream->LineNumber() : 0; }

bool PPDX::StartReading(std::unique_ptr<PPDFileStream> stream) {
    gEndOfPPD = false;
    unclosedValues.clear();
    SetApplicationTextEncoding(kCFStringEncodingUnknown);
    fileStream = std::move(stream);
    return fileStream && !fileStream->Bad();
}

} // namespace torka
