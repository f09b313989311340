// SPDX-License-Identifier: Apache-2.0
#include "bidi/text/FieldText.h"

#include "platform/TextEncoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace torka {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;
constexpr char32_t lastCharacter = 0x10FFFF;

bool isContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80; }

bool isCharacter(char32_t point) { return point <= lastCharacter && (point < 0xD800 || point > 0xDFFF); }

// The number of ASCII bytes at the start of the text.
std::size_t asciiRun(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (std::uint64_t eight = 0; at + sizeof eight <= text.size(); at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if (eight & highBits) {
            break;
        }
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) {
        ++at;
    }
    return at;
}

} // namespace

std::size_t wholeCharacters(std::string_view text, std::size_t size) {
    if (text.size() <= size) {
        return text.size();
    }
    constexpr int longestTail = 3;
    std::size_t end = size;
    for (int i = 0; i < longestTail && end > 0 && isContinuation(text[end]); ++i) {
        --end;
    }
    return isContinuation(text[end]) ? size : end; // invalid UTF-8 may be cut anywhere
}

void FieldWriter::AppendEncoded(char32_t character) {
    const char32_t point = isCharacter(character) ? character : replacementCharacter;
    std::array<char, 4> bytes{};
    const std::size_t length = point < 0x80 ? 1 : point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
    char32_t rest = point;
    for (std::size_t i = length - 1; i > 0; --i) {
        bytes[i] = static_cast<char>(0x80U | (rest & 0x3FU));
        rest >>= 6U;
    }
    constexpr std::array<char32_t, 5> leadMarks{0, 0, 0xC0, 0xE0, 0xF0};
    bytes[0] = static_cast<char>(leadMarks[length] | rest);
    Append(std::string_view(bytes.data(), length));
}

void FieldWriter::Append(std::string_view piece) {
    if (full || piece.size() > field.size() - used) {
        full = true;
        return;
    }
    std::copy(piece.begin(), piece.end(), field.begin() + static_cast<std::ptrdiff_t>(used));
    used += piece.size();
}

std::size_t FieldWriter::AppendAscii(const wchar_t* text) {
    const std::span<char> room = full ? std::span<char>() : field.subspan(used);
    std::size_t length = 0;
    while (length < room.size() && text[length] > L'\0' && text[length] < 0x80) {
        room[length] = static_cast<char>(text[length]);
        ++length;
    }
    used += length;
    return length;
}

void FieldWriter::Finish() {
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(used), field.end(), '\0');
}

std::size_t widenInto(std::span<wchar_t> out, std::string_view text) {
    const std::size_t ascii = std::min(asciiRun(text), out.size());
    for (std::size_t i = 0; i < ascii; ++i) {
        out[i] = static_cast<wchar_t>(text[i]);
    }
    if (ascii == text.size()) {
        return ascii;
    }
    const std::wstring rest = wideFromUtf8(text.substr(ascii)).substr(0, out.size() - ascii);
    std::copy(rest.begin(), rest.end(), out.begin() + static_cast<std::ptrdiff_t>(ascii));
    return ascii + rest.size();
}

} // namespace torka
