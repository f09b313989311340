// SPDX-License-Identifier: Apache-2.0
#include "platform/TextEncoding.h"

#include "platform/System.h"
#include "platform/icu/JapaneseEncoding.h"
#include "platform/icu/NonLossyAscii.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

namespace torka::platform {

namespace {

constexpr char16_t replacement = u'\xFFFD';
// ICU counts in 32 bits, and a byte may become several units. Longer text is refused.
constexpr std::size_t maximumBytes = std::numeric_limits<std::int32_t>::max() / 8;

struct NamedEncoding {
    CFStringEncoding number;
    const char* converter; // ICU's name
};

constexpr NamedEncoding namedEncodings[] = {
    {kCFStringEncodingMacRoman, "macintosh"},
    {kCFStringEncodingMacCentralEurRoman, "x-mac-centraleurroman"},
    {kCFStringEncodingMacTurkish, "x-mac-turkish"},
    {kCFStringEncodingISOLatin1, "ISO-8859-1"},
    {kCFStringEncodingISOLatin2, "ISO-8859-2"},
    {kCFStringEncodingISOLatin5, "ISO-8859-9"},
    {kCFStringEncodingWindowsLatin1, "windows-1252"},
    {kCFStringEncodingGB_18030_2000, "gb18030"},
};

const NamedEncoding* findNamed(CFStringEncoding encoding) {
    const auto* place =
        std::find_if(std::begin(namedEncodings), std::end(namedEncodings),
                     [encoding](const NamedEncoding& named) { return named.number == encoding; });
    return place == std::end(namedEncodings) ? nullptr : place;
}

bool isJapanese(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacJapanese || encoding == kCFStringEncodingShiftJIS;
}

// REQUIRES: isJapanese(encoding).
Japanese japaneseKind(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingMacJapanese ? Japanese::mac : Japanese::shiftJis;
}

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

// A converter has state, so that each thread creates its own for an encoding, once. Null when ICU lacks the
// encoding.
UConverter* converterFor(const NamedEncoding& named) {
    thread_local std::vector<std::pair<CFStringEncoding, Converter>> made;
    for (const auto& [number, converter] : made) {
        if (number == named.number) {
            return converter.get();
        }
    }
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(named.converter, &status), &ucnv_close);
    if (U_FAILURE(status)) {
        return nullptr;
    }
    ucnv_setFallback(converter.get(), false);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    return made.emplace_back(named.number, std::move(converter)).second.get();
}

enum class OnFault { stop, replace };

std::optional<std::u16string> decodeNamed(std::string_view bytes, const NamedEncoding& named,
                                          OnFault onFault) {
    UConverter* converter = converterFor(named);
    if (!converter) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter,
                        onFault == OnFault::stop ? UCNV_TO_U_CALLBACK_STOP : UCNV_TO_U_CALLBACK_SUBSTITUTE,
                        nullptr, nullptr, nullptr, &status);
    // Two units a byte suffice for every encoding, invalid bytes included.
    std::u16string units(bytes.size() * 2 + 2, u'\0');
    const std::int32_t length =
        ucnv_toUChars(converter, units.data(), static_cast<std::int32_t>(units.size()), bytes.data(),
                      static_cast<std::int32_t>(bytes.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    units.resize(static_cast<std::size_t>(length));
    return units;
}

std::optional<std::string> encodeNamed(std::u16string_view text, const NamedEncoding& named) {
    UConverter* converter = converterFor(named);
    if (!converter) {
        return std::nullopt;
    }
    UErrorCode status = U_ZERO_ERROR;
    std::string bytes(text.size() * static_cast<std::size_t>(ucnv_getMaxCharSize(converter)) + 1, '\0');
    const std::int32_t length =
        ucnv_fromUChars(converter, bytes.data(), static_cast<std::int32_t>(bytes.size()), text.data(),
                        static_cast<std::int32_t>(text.size()), &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::optional<std::u16string> decodeUtf8(std::string_view bytes, OnFault onFault) {
    std::u16string units(bytes.size(), u'\0'); // no byte becomes more than one unit
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(units.data(), static_cast<std::int32_t>(units.size()), &length, bytes.data(),
                         static_cast<std::int32_t>(bytes.size()), onFault == OnFault::stop ? -1 : replacement,
                         nullptr, &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    units.resize(static_cast<std::size_t>(length));
    return units;
}

std::optional<std::string> encodeUtf8(std::u16string_view text, OnFault onFault) {
    std::string bytes(text.size() * 3, '\0');
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<std::int32_t>(bytes.size()), &length, text.data(),
                       static_cast<std::int32_t>(text.size()), onFault == OnFault::stop ? -1 : replacement,
                       nullptr, &status);
    if (U_FAILURE(status)) {
        return std::nullopt;
    }
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

std::optional<std::u16string> decodeUtf16(std::string_view bytes, OnFault onFault) {
    bool swapped = false;
    if (bytes.size() >= 2) {
        const bool bigMark = bytes.starts_with("\xFE\xFF");
        if (bigMark || bytes.starts_with("\xFF\xFE")) {
            swapped = bigMark == (std::endian::native == std::endian::little);
            bytes.remove_prefix(2);
        }
    }
    const bool oddByte = bytes.size() % 2 != 0;
    if (oddByte && onFault == OnFault::stop) {
        return std::nullopt;
    }
    std::u16string units(bytes.size() / 2, u'\0');
    if (!units.empty()) {
        std::memcpy(units.data(), bytes.data(), units.size() * 2);
    }
    if (swapped) {
        for (char16_t& unit : units) {
            unit = static_cast<char16_t>(unit >> 8 | unit << 8);
        }
    }
    if (oddByte) {
        units += replacement;
    }
    return units;
}

std::string encodeUtf16(std::u16string_view text) {
    std::string bytes(text.size() * 2, '\0');
    if (!text.empty()) {
        std::memcpy(bytes.data(), text.data(), bytes.size());
    }
    return bytes;
}

std::optional<std::u16string> decodeAscii(std::string_view bytes, OnFault onFault) {
    if (onFault == OnFault::stop) {
        return std::nullopt; // callers handle pure ASCII before this point
    }
    std::u16string units(bytes.size(), u'\0');
    std::transform(bytes.begin(), bytes.end(), units.begin(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x80 ? static_cast<char16_t>(byte) : replacement;
    });
    return units;
}

bool isAscii(std::string_view bytes) {
    unsigned char all = 0;
    for (const char c : bytes) {
        all = static_cast<unsigned char>(all | static_cast<unsigned char>(c));
    }
    return all < 0x80;
}

bool isAscii(std::u16string_view units) {
    char16_t all = 0;
    for (const char16_t unit : units) {
        all = static_cast<char16_t>(all | unit);
    }
    return all < 0x80;
}

// Whether the bytes are ASCII with the same meaning in this encoding. Mac Japanese and non-lossy ASCII change
// the meaning of the backslash. REQUIRES: a known encoding.
bool isPlain(std::string_view bytes, CFStringEncoding encoding) {
    if (encoding == kCFStringEncodingUTF16 || !isAscii(bytes)) {
        return false;
    }
    const bool ownBackslash =
        encoding == kCFStringEncodingMacJapanese || encoding == kCFStringEncodingNonLossyASCII;
    return !ownBackslash || bytes.find('\\') == std::string_view::npos;
}

// Converts ASCII text to bytes.
std::string narrowed(std::u16string_view text) {
    std::string bytes(text.size(), '\0');
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](char16_t unit) { return static_cast<char>(unit); });
    return bytes;
}

std::optional<std::u16string> decode(std::string_view bytes, CFStringEncoding encoding, OnFault onFault) {
    if (!isKnownEncoding(encoding) || bytes.size() > maximumBytes) {
        return std::nullopt;
    }
    if (isPlain(bytes, encoding)) {
        return std::u16string(bytes.begin(), bytes.end());
    }
    if (const NamedEncoding* named = findNamed(encoding)) {
        return decodeNamed(bytes, *named, onFault);
    }
    switch (encoding) {
    case kCFStringEncodingUTF8:
        return decodeUtf8(bytes, onFault);
    case kCFStringEncodingUTF16:
        return decodeUtf16(bytes, onFault);
    case kCFStringEncodingNonLossyASCII:
        return decodeNonLossyAscii(bytes, onFault == OnFault::replace);
    case kCFStringEncodingASCII:
        return decodeAscii(bytes, onFault);
    default:
        return decodeJapanese(bytes, japaneseKind(encoding), onFault == OnFault::replace);
    }
}

} // namespace

CFStringEncoding CreateTextEncoding(CFStringEncoding base, CFStringEncoding variant,
                                    CFStringEncoding format) {
    // Bits 0-15 base, 16-25 variant, 26-29 format: the layout of the Text Encoding Conversion Manager.
    return base | (variant & 0x3FF) << 16 | (format & 0xF) << 26;
}

CFStringEncoding CFStringGetMostCompatibleMacStringEncoding(CFStringEncoding encoding) {
    switch (encoding) {
    case kCFStringEncodingUTF8:
    case kCFStringEncodingUTF16:
    case kCFStringEncodingMacJapanese:
    case kCFStringEncodingMacCentralEurRoman:
    case kCFStringEncodingMacTurkish:
        return encoding;
    case kCFStringEncodingShiftJIS:
        return kCFStringEncodingMacJapanese;
    case kCFStringEncodingISOLatin2:
        return kCFStringEncodingMacCentralEurRoman;
    case kCFStringEncodingISOLatin5:
        return kCFStringEncodingMacTurkish;
    default:
        return isKnownEncoding(encoding) ? kCFStringEncodingMacRoman : kCFStringEncodingUnknown;
    }
}

CFStringEncoding CFStringGetSystemEncoding() {
    return hasSystem() ? system().NarrowEncoding() : kCFStringEncodingUTF8;
}

bool isKnownEncoding(CFStringEncoding encoding) {
    return encoding == kCFStringEncodingUTF8 || encoding == kCFStringEncodingUTF16 ||
           encoding == kCFStringEncodingASCII || encoding == kCFStringEncodingNonLossyASCII ||
           isJapanese(encoding) || findNamed(encoding) != nullptr;
}

std::optional<std::u16string> decodeText(std::string_view bytes, CFStringEncoding encoding) {
    return decode(bytes, encoding, OnFault::stop);
}

std::optional<std::u16string> decodeTextLossy(std::string_view bytes, CFStringEncoding encoding) {
    return decode(bytes, encoding, OnFault::replace);
}

std::optional<std::string> encodeText(std::u16string_view text, CFStringEncoding encoding) {
    if (!isKnownEncoding(encoding) || text.size() > maximumBytes) {
        return std::nullopt;
    }
    if (encoding == kCFStringEncodingNonLossyASCII) {
        return encodeNonLossyAscii(text);
    }
    if (encoding == kCFStringEncodingUTF16) {
        return encodeUtf16(text);
    }
    if (isJapanese(encoding)) {
        return encodeJapanese(text, japaneseKind(encoding));
    }
    if (isAscii(text)) {
        return narrowed(text);
    }
    if (const NamedEncoding* named = findNamed(encoding)) {
        return encodeNamed(text, *named);
    }
    return encoding == kCFStringEncodingUTF8 ? encodeUtf8(text, OnFault::stop) : std::nullopt;
}

std::string utf8FromUtf16(std::u16string_view units) {
    if (isAscii(units)) {
        return narrowed(units);
    }
    return encodeUtf8(units.substr(0, maximumBytes), OnFault::replace).value_or(std::string());
}

char32_t nextCodePoint(std::u16string_view units, std::size_t& position) {
    const char32_t first = units[position++];
    if (!U16_IS_LEAD(first) || position == units.size() || !U16_IS_TRAIL(units[position])) {
        return first;
    }
    return static_cast<char32_t>(U16_GET_SUPPLEMENTARY(first, units[position++]));
}

// Wide text

std::u16string utf16FromWide(std::wstring_view wide) {
    static_assert(sizeof(wchar_t) == 4, "wide text holds 32-bit units");
    std::u16string units;
    units.reserve(wide.size());
    for (const wchar_t unit : wide) {
        const auto point = static_cast<char32_t>(unit);
        if (point > 0x10FFFF || U_IS_SURROGATE(point)) {
            units += replacement;
        } else if (point > 0xFFFF) {
            units += {U16_LEAD(point), U16_TRAIL(point)};
        } else {
            units += static_cast<char16_t>(point);
        }
    }
    return units;
}

std::wstring wideFromUtf16(std::u16string_view units) {
    std::wstring wide;
    wide.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        const char32_t point = nextCodePoint(units, i);
        wide += static_cast<wchar_t>(U_IS_SURROGATE(point) ? replacement : point);
    }
    return wide;
}

std::string utf8FromWide(std::wstring_view wide) { return utf8FromUtf16(utf16FromWide(wide)); }

std::wstring wideFromUtf8(std::string_view utf8) {
    return wideFromUtf16(decodeTextLossy(utf8, kCFStringEncodingUTF8).value_or(std::u16string()));
}

} // namespace torka::platform
