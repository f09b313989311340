// SPDX-License-Identifier: Apache-2.0
#include "TextConverter.h"

#include "PPDX/Utilities/MemoryShortage.h"
#include "platform/Log.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

namespace torka {

namespace {

constexpr std::string_view hexWhiteSpace = " \t\r\n";

bool needsConverter(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingISOLatin2 || encoding == kCFStringEncodingISOLatin5 ||
           encoding == kCFStringEncodingShiftJIS;
}

bool isDirect(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacRoman || encoding == kCFStringEncodingISOLatin1 ||
           encoding == kCFStringEncodingWindowsLatin1;
}

// Ignores an odd last byte.
std::u16string asUnicodeInput(std::string_view bytes) {
    std::u16string units(bytes.size() / sizeof(char16_t), u'\0');
    if (!units.empty()) {
        std::memcpy(units.data(), bytes.data(), units.size() * sizeof(char16_t));
    }
    return units;
}

// Cuts the text to fit. REQUIRES: size > 0.
void copyCut(std::string_view text, char* buffer, long size) {
    const std::size_t count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(text.data(), count, buffer);
    buffer[count] = '\0';
}

} // namespace

TextConverter::TextConverter(CFStringEncoding encoding, const char* version)
    : ppdEncoding(encoding)
    , currentEncoding(CFStringGetSystemEncoding()) {
    if (ppdEncoding != kCFStringEncodingUnknown) {
        languageVersion = version;
        status = isKnownEncoding(ppdEncoding) && isKnownEncoding(currentEncoding) ? 0 : 1;
    }
}

TextConverter::TextConverter(const DescriptionLanguage* description)
    : TextConverter(GetPPDEncoding(description),
                    description != nullptr && description->LanguageVersion() != nullptr
                        ? description->LanguageVersion()->Buffer()
                        : nullptr) {}

TextConverter::~TextConverter() = default;

CFStringEncoding TextConverter::GetPPDEncoding(const DescriptionLanguage* description) {
    const CString* const name = description != nullptr ? description->LanguageEncoding() : nullptr;
    return name != nullptr ? LanguageStringToEncoding(*name) : kCFStringEncodingUnknown;
}

CFStringEncoding TextConverter::LanguageStringToEncoding(const char* name) {
    struct Language {
        std::string_view name;
        CFStringEncoding encoding;
    };
    static constexpr Language languages[] = {
        {"ISOLatin1", kCFStringEncodingISOLatin1},  {"ISOLatin2", kCFStringEncodingISOLatin2},
        {"ISOLatin5", kCFStringEncodingISOLatin5},  {"JIS83-RKSJ", kCFStringEncodingShiftJIS},
        {"MacStandard", kCFStringEncodingMacRoman}, {"WindowsANSI", kCFStringEncodingWindowsLatin1},
    };
    const std::string_view sought(name != nullptr ? name : "");
    if (sought == "UTF-8") {
        return CFStringGetMostCompatibleMacStringEncoding(CreateTextEncoding(kCFStringEncodingUTF16, 0, 2));
    }
    for (const Language& each : languages) {
        if (each.name == sought) {
            return each.encoding;
        }
    }
    return kCFStringEncodingUnknown;
}

CFStringRef TextConverter::ConvertToCFString(const char* text, long limit) {
    if (text == nullptr || limit <= 0) {
        return cfString("");
    }
    return ConvertToCFString(std::string_view(text, strnlen(text, static_cast<std::size_t>(limit))));
}

CFStringRef TextConverter::ConvertToCFString(std::string_view text) {
    try {
        if (text.find('<') == std::string_view::npos) {
            return std::make_shared<const CFString>(ToUnicode(text));
        }
        std::string decoded(text.size(), '\0');
        decoded.resize(DehexBufferFill(text, decoded.data()));
        return std::make_shared<const CFString>(ToUnicode(decoded));
    } catch (const std::bad_alloc&) {
        ++gMemoryShortages;
        return cfString("Out Of Memory");
    }
}

std::u16string TextConverter::ToUnicode(std::string_view bytes) {
    if (needsConverter(ppdEncoding)) {
        if (toUnicodeEncoding != ppdEncoding) {
            TORKA_ASSERT(isKnownEncoding(ppdEncoding), "mToUnicode");
            toUnicodeEncoding = ppdEncoding;
        }
        auto converted = decodeText(bytes, toUnicodeEncoding);
        return converted ? std::move(*converted) : asUnicodeInput(bytes);
    }
    const CFStringEncoding encoding = isDirect(ppdEncoding) ? ppdEncoding : kCFStringEncodingUTF8;
    return decodeTextLossy(bytes, encoding).value_or(std::u16string());
}

bool TextConverter::CFStringToCstring(const CFStringRef& string, char* buffer, long size) {
    if (buffer == nullptr || size <= 0) {
        return false;
    }
    const bool isConverted = CFStringGetCString(string, buffer, size, CFStringGetSystemEncoding());
    if (!isConverted) {
        copyCut("Translation Error", buffer, size);
    }
    return isConverted;
}

bool TextConverter::Convert(const char* text, char* buffer, long size) {
    const long length = text != nullptr ? static_cast<long>(std::strlen(text)) : 0;
    return convertText(text, length, buffer, size);
}

bool TextConverter::ppdStringConvert(CString& text) {
    const CFStringRef string =
        ConvertToCFString(std::string_view(text.Buffer() != nullptr ? text.Buffer() : ""));
    const auto bytes = encodeText(string->units, GetOutputEncoding());
    text = bytes ? bytes->c_str() : "Translation Error";
    return bytes.has_value();
}

bool TextConverter::convertText(const char* text, long length, char* buffer, long size) {
    const bool hasText = text != nullptr && length > 0;
    const std::string_view bytes = hasText ? std::string_view(text, static_cast<std::size_t>(length)) : "";
    return CFStringToCstring(ConvertToCFString(bytes), buffer, size);
}

void TextConverter::resetOutputHandle() { toUnicodeEncoding = kCFStringEncodingUnknown; }

int TextConverter::toShort(char digit) {
    if (digit >= '0' && digit <= '9') {
        return digit - '0';
    }
    const char lower = static_cast<char>(digit | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

char TextConverter::nextHexChar(std::string_view run, std::size_t& position) {
    position = std::min(run.find_first_not_of(hexWhiteSpace, position), run.size());
    return position < run.size() ? run[position++] : '\0';
}

namespace {

// Decodes a run of digits. Returns false when it is not one.
bool decodeRun(std::string_view run, char*& out) {
    char* place = out;
    std::size_t position = 0;
    while (run.find_first_not_of(hexWhiteSpace, position) != std::string_view::npos) {
        const int high = TextConverter::toShort(TextConverter::nextHexChar(run, position));
        const int low = TextConverter::toShort(TextConverter::nextHexChar(run, position));
        if (high < 0 || low < 0) {
            return false;
        }
        *place++ = static_cast<char>(high * 16 + low);
    }
    out = place;
    return true;
}

} // namespace

std::size_t TextConverter::DehexBufferFill(std::string_view in, char* out) {
    char* place = out;
    while (!in.empty()) {
        const std::size_t opening = std::min(in.find('<'), in.size());
        place += in.copy(place, opening);
        in.remove_prefix(opening);
        const std::size_t closing = in.find('>');
        if (in.empty() || closing == std::string_view::npos || !decodeRun(in.substr(1, closing - 1), place)) {
            place += in.copy(place, in.size());
            break;
        }
        in.remove_prefix(closing + 1);
    }
    return static_cast<std::size_t>(place - out);
}

HexLanguageExceptions::HexLanguageExceptions()
    : names{"Japanese",   "ChineseTrad", "ChineseSimp", "Chinese", "Korean",    "Czech",
            "Russian",    "Bulg",        "Estonian",    "Greek",   "Hungarian", "Latvian",
            "Lithuanian", "Polish",      "Romanian",    "Slovak",  "Slovenian"} {}

HexLanguageExceptions::~HexLanguageExceptions() = default;

} // namespace torka
