// SPDX-License-Identifier: Apache-2.0
#include "jobproperties/core/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cwchar>
#include <iconv.h>

namespace torka::jobproperties {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool isScalar(char32_t character) {
    return character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
}

void append(std::string& text, char32_t character) {
    if (!isScalar(character)) {
        character = replacement;
    }
    const auto trail = [&](int shift) { text += static_cast<char>(0x80U | ((character >> shift) & 0x3FU)); };
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0U | (character >> 6));
        trail(0);
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0U | (character >> 12));
        trail(6);
        trail(0);
    } else {
        text += static_cast<char>(0xF0U | (character >> 18));
        trail(12);
        trail(6);
        trail(0);
    }
}

// Takes one character (RFC 3629) off the front of `utf8`, which is not empty. Takes a byte alone when no
// character begins with it.
char32_t takeCharacter(std::string_view& utf8) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char first = byte(0);
    std::size_t length = 1;
    char32_t character = first;
    if (first >= 0xC2 && first <= 0xDF) {
        length = 2;
        character = first & 0x1FU;
    } else if (first >= 0xE0 && first <= 0xEF) {
        length = 3;
        character = first & 0x0FU;
    } else if (first >= 0xF0 && first <= 0xF4) {
        length = 4;
        character = first & 0x07U;
    } else if (first >= 0x80) {
        utf8.remove_prefix(1);
        return replacement;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if (i >= utf8.size() || (byte(i) & 0xC0U) != 0x80U) {
            utf8.remove_prefix(1);
            return replacement;
        }
        character = (character << 6) | (byte(i) & 0x3FU);
    }
    const bool overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
    utf8.remove_prefix(overlong || !isScalar(character) ? 1 : length);
    return overlong || !isScalar(character) ? replacement : character;
}

const char* codePage(std::string_view encoding) {
    struct Pair {
        std::string_view encoding;
        const char* codePage;
    };
    static constexpr std::array<Pair, 6> pairs{{{"ISOLatin1", "ISO-8859-1"},
                                                {"ISOLatin2", "ISO-8859-2"},
                                                {"ISOLatin5", "ISO-8859-9"},
                                                {"JIS83-RKSJ", "CP932"},
                                                {"MacStandard", "MACINTOSH"},
                                                {"WindowsANSI", "CP1252"}}};
    const auto* found =
        std::find_if(pairs.begin(), pairs.end(), [&](const Pair& pair) { return pair.encoding == encoding; });
    return found == pairs.end() ? nullptr : found->codePage;
}

} // namespace

std::string fromWide(const wchar_t* text) {
    std::string utf8;
    if (text == nullptr) {
        return utf8;
    }
    const std::size_t length = ::wcsnlen(text, maximumTextLength);
    utf8.reserve(length);
    for (std::size_t i = 0; i < length; ++i) {
        append(utf8, static_cast<char32_t>(text[i]));
    }
    return utf8;
}

std::wstring toWide(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    while (!utf8.empty()) {
        wide += static_cast<wchar_t>(takeCharacter(utf8));
    }
    return wide;
}

std::string cleanUtf8(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        append(text, takeCharacter(bytes));
    }
    return text;
}

TextDecoder::TextDecoder(std::string_view encoding) {
    const char* page = codePage(encoding);
    iconv_t opened = page == nullptr ? nullptr : ::iconv_open("UTF-8", page);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the value by which iconv_open says that it failed
    converter = opened == reinterpret_cast<iconv_t>(-1) ? nullptr : opened;
}

TextDecoder::~TextDecoder() {
    if (converter != nullptr) {
        ::iconv_close(converter);
    }
}

std::string TextDecoder::ToUtf8(std::string_view bytes) const {
    const bool ascii = std::all_of(bytes.begin(), bytes.end(),
                                   [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
    if (converter == nullptr || ascii) {
        return cleanUtf8(bytes);
    }
    ::iconv(converter, nullptr, nullptr, nullptr, nullptr); // discards the state of an incomplete text
    std::string input(bytes);
    std::string output(input.size() * 4, '\0');
    char* in = input.data();
    char* out = output.data();
    std::size_t inLeft = input.size();
    std::size_t outLeft = output.size();
    while (inLeft > 0 && ::iconv(converter, &in, &inLeft, &out, &outLeft) == static_cast<std::size_t>(-1)) {
        if (errno == E2BIG || outLeft < 3) {
            break;
        }
        out = std::copy_n("\xEF\xBF\xBD", 3, out);
        outLeft -= 3;
        ++in;
        --inLeft;
    }
    output.resize(output.size() - outLeft);
    return output;
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (true) {
        const std::size_t end = text.find(separator);
        pieces.push_back(text.substr(0, end));
        if (end == std::string_view::npos) {
            return pieces;
        }
        text.remove_prefix(end + 1);
    }
}

std::optional<double> decimalNumber(std::string_view text) {
    double number = 0;
    const auto result =
        std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size() ||
        !(number > -1e15 && number < 1e15)) {
        return std::nullopt;
    }
    return number;
}

std::optional<long> wholeNumber(std::string_view text) {
    long number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::string decimalText(double number) {
    std::array<char, 400> text;
    const auto result =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    return {text.data(), result.ptr};
}

} // namespace torka::jobproperties
