// SPDX-License-Identifier: Apache-2.0
#include "output/WatermarkEncoding.h"

#include "platform/TextEncoding.h"

#include <cstddef>
#include <optional>

namespace torka {

namespace {

constexpr char32_t replacement = U'\xFFFD';

bool isSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

std::u16string unitsOf(char32_t character) {
    if (character < 0x10000) {
        return {static_cast<char16_t>(character)};
    }
    const char32_t above = character - 0x10000;
    return {static_cast<char16_t>(0xD800 + (above >> 10)), static_cast<char16_t>(0xDC00 + (above & 0x3FF))};
}

void appendBigEndian(std::string& bytes, char32_t value, int count) {
    for (int shift = (count - 1) * 8; shift >= 0; shift -= 8) {
        bytes += static_cast<char>(value >> shift & 0xFF);
    }
}

void appendLatin(std::string& bytes, char32_t character) {
    constexpr char euro = '\x80';
    const bool isLatin1 = character < 0x80 || (character >= 0xA0 && character <= 0xFF);
    bytes += character == U'\x20AC' ? euro : isLatin1 ? static_cast<char>(character) : '?';
}

// Appends in an encoding that the platform knows.
void appendEncoded(std::string& bytes, char32_t character, CFStringEncoding encoding) {
    const std::optional<std::string> code =
        character == replacement ? std::nullopt : encodeText(unitsOf(character), encoding);
    bytes += code.value_or("?");
}

std::string shiftJis(char32_t character) {
    constexpr char32_t noBreakSpace = U'\xA0';
    return encodeText(unitsOf(character == noBreakSpace ? U' ' : character), kCFStringEncodingShiftJIS)
        .value_or("?");
}

// Converts a Shift-JIS code to the row and cell of JIS X 0208, as two bytes of 7 bits. Returns nothing for
// the rows that the standard leaves free (9 to 15 and 85 on) and that vendors filled in Shift-JIS.
std::optional<char32_t> jisCode(std::string_view code) {
    const unsigned lead = static_cast<unsigned char>(code[0]);
    const unsigned trail = static_cast<unsigned char>(code[1]);
    const unsigned rowPair = lead - (lead < 0xA0 ? 0x81 : 0xC1);
    const unsigned cell = trail - (trail < 0x7F ? 0x40 : 0x41);
    constexpr unsigned cellCount = 94;
    const unsigned row = 1 + rowPair * 2 + cell / cellCount;
    if ((row > 8 && row < 16) || row > 84) {
        return std::nullopt;
    }
    return (0x20 + row) << 8 | (0x21 + cell % cellCount);
}

void appendEuc(std::string& bytes, char32_t character) {
    constexpr char halfWidthKatakana = '\x8E';
    const std::string code = shiftJis(character);
    if (code.size() == 2) {
        const std::optional<char32_t> jis = jisCode(code);
        appendBigEndian(bytes, jis ? *jis | 0x8080 : U'?', jis ? 2 : 1);
        return;
    }
    if (static_cast<unsigned char>(code[0]) >= 0x80) {
        bytes += halfWidthKatakana;
    }
    bytes += code;
}

void appendJis(std::string& bytes, char32_t character) {
    constexpr char32_t fullWidthSpace = U'\x3000';
    constexpr char32_t toFullWidth = U'\xFF01' - U'!';
    constexpr char32_t questionMark = 0x2129; // its row and cell
    if (character == U' ' || character == U'\xA0') {
        character = fullWidthSpace;
    } else if (character > U' ' && character < 0x7F) {
        character += toFullWidth;
    }
    const std::string code = shiftJis(character);
    appendBigEndian(bytes, code.size() == 2 ? jisCode(code).value_or(questionMark) : questionMark, 2);
}

void appendUtf16(std::string& bytes, char32_t character, bool hasSurrogates) {
    const std::u16string units = character == replacement ? u"?" : unitsOf(character);
    for (const char16_t unit : units.size() > 1 && !hasSurrogates ? std::u16string(u"?") : units) {
        appendBigEndian(bytes, unit, 2);
    }
}

void appendJapanese(std::string& bytes, char32_t character, std::string_view fontName) {
    const auto names = [fontName](std::string_view part) {
        return fontName.find(part) != std::string_view::npos;
    };
    if (names("pv-RKSJ")) {
        appendEncoded(bytes, character, kCFStringEncodingMacJapanese);
    } else if (names("RKSJ")) {
        bytes += shiftJis(character);
    } else if (names("EUC")) {
        appendEuc(bytes, character);
    } else if (names("UTF8")) {
        appendEncoded(bytes, character, kCFStringEncodingUTF8);
    } else if (names("UTF16") || names("UCS2")) {
        appendUtf16(bytes, character, names("UTF16"));
    } else if (names("UTF32")) {
        appendBigEndian(bytes, character == replacement ? U'?' : character, 4);
    } else {
        appendJis(bytes, character);
    }
}

} // namespace

namespace {

// GB 2312 within GB 18030: ASCII, and two bytes of rows 1 to 87 (leading byte 0xA1 to 0xF7).
bool isGb2312(std::string_view bytes) {
    const auto byte = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    return bytes.size() == 1 ||
           (bytes.size() == 2 && byte(0) >= 0xA1 && byte(0) <= 0xF7 && byte(1) >= 0xA1 && byte(1) != 0xFF);
}

} // namespace

WatermarkPrint watermarkPrint(std::string_view text, std::string_view language, std::string_view fontName) {
    const std::string font = postScriptFontName(fontName);
    const WatermarkFontKind kind = watermarkFontKind(language, font);
    const std::string substitute = watermarkBytes("?", kind, font);
    const std::u16string units = decodeTextLossy(text, kCFStringEncodingUTF8).value_or(std::u16string());
    WatermarkPrint print;
    for (std::size_t position = 0; position < units.size();) {
        const std::size_t begin = position;
        nextCodePoint(units, position);
        const std::u16string character = units.substr(begin, position - begin);
        const std::string bytes = watermarkBytes(utf8FromUtf16(character), kind, font);
        const bool isQuestionMark = character == u"?" || character == u"\uFF1F";
        const bool isPrinted = isQuestionMark || (bytes != substitute &&
                                                  (kind != WatermarkFontKind::chinese || isGb2312(bytes)));
        print.shown += isPrinted ? character : u"?";
        if (!isPrinted && print.missing.find(character) == std::u16string::npos) {
            print.missing += character;
        }
    }
    return print;
}

std::string watermarkBytes(std::string_view text, WatermarkFontKind kind, std::string_view fontName) {
    const std::u16string units = decodeTextLossy(text, kCFStringEncodingUTF8).value_or(std::u16string());
    std::string bytes;
    for (std::size_t position = 0; position < units.size();) {
        char32_t character = nextCodePoint(units, position);
        if (isSurrogate(character)) {
            character = replacement;
        }
        switch (kind) {
        case WatermarkFontKind::latin:
            appendLatin(bytes, character);
            break;
        case WatermarkFontKind::latinExtended:
            appendEncoded(bytes, character, kCFStringEncodingUTF8);
            break;
        case WatermarkFontKind::chinese:
            appendEncoded(bytes, character, kCFStringEncodingGB_18030_2000);
            break;
        case WatermarkFontKind::japanese:
            appendJapanese(bytes, character, fontName);
            break;
        }
    }
    return bytes;
}

} // namespace torka
