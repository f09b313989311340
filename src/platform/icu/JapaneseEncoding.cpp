// SPDX-License-Identifier: Apache-2.0
#include "platform/icu/JapaneseEncoding.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <unicode/ucnv.h>
#include <vector>

namespace torka::platform {

namespace {

struct Pair {
    std::uint16_t code;
    char16_t unit;
};

// The characters of JIS X 0208 for which ICU's Shift_JIS follows the Windows table.
constexpr Pair standardPairs[] = {
    {0x8160, u'\x301C'}, {0x8161, u'\x2016'}, {0x817C, u'\x2212'},
    {0x8191, u'\x00A2'}, {0x8192, u'\x00A3'}, {0x81CA, u'\x00AC'},
};
constexpr Pair macPairs[] = {
    {0x5C, u'\x00A5'}, {0x80, u'\\'},     {0xA0, u'\x00A0'},
    {0xFD, u'\x00A9'}, {0xFE, u'\x2122'}, {0xFF, u'\x2026'},
};
// What JIS X 0201 has in place of two ASCII characters.
constexpr Pair romanPairs[] = {{0x5C, u'\x00A5'}, {0x7E, u'\x203E'}};

constexpr char16_t firstKana = u'\xFF61'; // half-width katakana are the bytes 0xA1 to 0xDF
constexpr std::size_t trailCount = 0xFC - 0x40 + 1;

bool isLead(unsigned byte) { return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); }
bool isTrail(unsigned byte) { return byte >= 0x40 && byte <= 0xFC && byte != 0x7F; }

std::size_t doubleIndex(unsigned lead, unsigned trail) {
    return (lead - (lead < 0xA0 ? 0x81U : 0xE0U - 0x1FU)) * trailCount + (trail - 0x40);
}

struct Tables {
    std::array<char16_t, 256> single{};                         // by byte; 0 for none
    std::array<char16_t, (0x1F + 0x1D) * trailCount> doubles{}; // by pair of bytes; 0 for none
    std::vector<std::uint16_t> codes =
        std::vector<std::uint16_t>(0x10000); // by unit; 0 for no code, and for NUL
};

void fillSingles(Tables& tables) {
    for (unsigned byte = 0; byte < 0x80; ++byte) {
        tables.single[byte] = static_cast<char16_t>(byte);
        tables.codes[byte] = static_cast<std::uint16_t>(byte);
    }
    for (unsigned byte = 0xA1; byte <= 0xDF; ++byte) {
        const auto unit = static_cast<char16_t>(firstKana + (byte - 0xA1));
        tables.single[byte] = unit;
        tables.codes[unit] = static_cast<std::uint16_t>(byte);
    }
}

// Fills in every two-byte character. When two codes stand for one character, the reverse table holds the code
// that ICU prefers.
void fillDoubles(Tables& tables) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open("Shift_JIS", &status),
                                                                       &ucnv_close);
    if (U_FAILURE(status)) {
        return;
    }
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    for (unsigned lead = 0x81; lead <= 0xFC; ++lead) {
        for (unsigned trail = 0x40; isLead(lead) && trail <= 0xFC; ++trail) {
            const char bytes[] = {static_cast<char>(lead), static_cast<char>(trail)};
            char16_t unit = 0;
            status = U_ZERO_ERROR;
            if (!isTrail(trail) || ucnv_toUChars(converter.get(), &unit, 1, bytes, 2, &status) != 1 ||
                U_FAILURE(status)) {
                continue;
            }
            tables.doubles[doubleIndex(lead, trail)] = unit;
            char back[4] = {};
            status = U_ZERO_ERROR;
            if (ucnv_fromUChars(converter.get(), back, sizeof back, &unit, 1, &status) == 2 &&
                U_SUCCESS(status)) {
                tables.codes[unit] = static_cast<std::uint16_t>(static_cast<unsigned char>(back[0]) << 8 |
                                                                static_cast<unsigned char>(back[1]));
            }
        }
    }
}

void fillStandard(Tables& tables) {
    for (const Pair& pair : standardPairs) {
        tables.doubles[doubleIndex(pair.code >> 8, pair.code & 0xFF)] = pair.unit;
        tables.codes[pair.unit] = pair.code;
    }
}

void fillMac(Tables& tables) {
    for (const Pair& pair : macPairs) {
        tables.single[pair.code] = pair.unit;
        if (tables.codes[pair.unit] <= 0xFF) {
            tables.codes[pair.unit] = pair.code; // the ellipsis keeps its two-byte code
        }
    }
}

void fillRoman(Tables& tables) {
    for (const Pair& pair : romanPairs) {
        tables.codes[pair.unit] = pair.code;
    }
}

std::unique_ptr<const Tables> makeTables(Japanese kind) {
    auto filled = std::make_unique<Tables>();
    fillSingles(*filled);
    fillDoubles(*filled);
    fillStandard(*filled);
    kind == Japanese::mac ? fillMac(*filled) : fillRoman(*filled);
    return filled;
}

// 165 kB for each kind, built for its first text.
const Tables& tables(Japanese kind) {
    if (kind == Japanese::mac) {
        static const std::unique_ptr<const Tables> mac = makeTables(kind);
        return *mac;
    }
    static const std::unique_ptr<const Tables> shiftJis = makeTables(kind);
    return *shiftJis;
}

} // namespace

std::optional<std::u16string> decodeJapanese(std::string_view bytes, Japanese kind, bool lossy) {
    const Tables& table = tables(kind);
    std::u16string units;
    units.reserve(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        char16_t unit = table.single[byte];
        bool known = unit != 0 || byte == 0;
        if (isLead(byte) && i + 1 < bytes.size() && isTrail(static_cast<unsigned char>(bytes[i + 1]))) {
            unit = table.doubles[doubleIndex(byte, static_cast<unsigned char>(bytes[i + 1]))];
            known = unit != 0;
            i += known ? 1 : 0;
        }
        if (!known && !lossy) {
            return std::nullopt;
        }
        units += known ? unit : u'\xFFFD';
    }
    return units;
}

std::optional<std::string> encodeJapanese(std::u16string_view text, Japanese kind) {
    const Tables& table = tables(kind);
    std::string bytes;
    bytes.reserve(text.size() * 2);
    for (const char16_t unit : text) {
        const std::uint16_t code = table.codes[unit];
        if (code == 0 && unit != 0) {
            return std::nullopt;
        }
        if (code > 0xFF) {
            bytes += static_cast<char>(code >> 8);
        }
        bytes += static_cast<char>(code & 0xFF);
    }
    return bytes;
}

} // namespace torka::platform
